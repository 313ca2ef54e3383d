#pragma once

#include <Pelluvia/model/GPSOutputReceiver.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>

namespace pelluvia {

/// Why a call log could not be read to its end.
struct CallLogFault {
    std::int64_t line = 0;   ///< from 1
    std::int64_t column = 0; ///< in bytes, from 1; 0 when it is not known
    std::string message;     ///< what is wrong there
};

/// A producer that makes the calls of a call log (see docs/call-log.md) on a receiver, in order and
/// as they stand: nothing is added at the end, and calls that a well-behaved producer would not
/// make in that order are made all the same.
///
/// Memory does not grow with the log; the limits on a line are in CallLogLimits.h.
///
/// Threads: as for the receiver.
class CallLogReader {
  public:
    /// The receiver is borrowed.
    explicit CallLogReader(GPSOutputReceiver &receiver) noexcept : receiver_(receiver) {}

    /// Reads an open file from where it stands to its end, and makes each call as soon as its line
    /// is read. Lines of white space are passed over. The first fault ends the reading, and neither
    /// its line nor what follows has any effect on the receiver; without one the result is empty.
    /// The descriptor is borrowed.
    [[nodiscard]] std::optional<CallLogFault> read(int descriptor);

    /// Asked before each line: true ends the reading without a fault. For a log that may never end,
    /// when its receiver has no use for more.
    void setStop(std::function<bool()> stop) { stop_ = std::move(stop); }

  private:
    GPSOutputReceiver &receiver_;
    std::function<bool()> stop_;
};

} // namespace pelluvia
