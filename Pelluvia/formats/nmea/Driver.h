#pragma once

#include <Pelluvia/formats/nmea/live/LiveView.h>
#include <Pelluvia/formats/nmea/live/SerialPort.h>
#include <Pelluvia/formats/nmea/read/Decoder.h>
#include <Pelluvia/formats/nmea/read/Tally.h>

#include <Pelluvia/model/GPSOutputReceiver.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

namespace pelluvia::nmea {

/// What `--baud`, `--date` and `--gap` say.
struct DriverOptions {
    long baud = standardBaudRate; ///< of a serial device; see `isBaudRate`
    DecoderOptions decoder;
};

/// How reading a source came to its end. Whatever it was, what had been read before was sent and
/// the transfers were ended.
enum class Ending : std::uint8_t {
    Complete,    ///< the source ended
    Interrupted, ///< the host wanted to end it: all is well
    Lost,        ///< the receiver's device is gone
    Unreadable,  ///< the source cannot be read, or not any further
    NotOpened    ///< the source cannot be opened; nothing was sent
};

struct Outcome {
    Ending ending = Ending::Complete;
    std::error_code error = {}; ///< why, for the last three
    std::string problem = {};   ///< the same in words
    Tally tally = {};
};

/// How a host steers the reading of a source that may never end. All is borrowed.
struct Control {
    /// A descriptor that becomes, and stays, readable when reading is to stop, or -1.
    int wakeUp = -1;
    /// Asked each time that something has come: true stops reading. For a receiver that has no use
    /// for more.
    std::function<bool()> stop = {};
    /// Shown each time how things stand, if the source is live; null for none.
    LiveView *view = nullptr;
};

/// A producer: reads NMEA 0183 from a file, a pipe or a receiver on a serial device, and makes the
/// calls of its transfers on `receiver` (see `Decoder`). `path` "-" is standard input.
///
/// A device that is lost, and a source that cannot be read on, is reported to the receiver's
/// `error` too, before its transfer ends.
///
/// Threads: runs on the caller's until the source ends; the receiver is called on it.
[[nodiscard]] Outcome readNMEA(const std::string &path, const DriverOptions &options,
                               GPSOutputReceiver &receiver, const Control &control = {});

/// The day, counted from 1970-01-01, that an option names as YYYY-MM-DD; nothing for anything else
/// and for days before 1970.
[[nodiscard]] std::optional<std::int64_t> dayOfOption(std::string_view text) noexcept;

} // namespace pelluvia::nmea
