// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/formats/nmea/NMEATally.h>

#include <Pelluvia/model/GPSOutputReceiver.h>
#include <Pelluvia/model/ReadingProgress.h>
#include <Pelluvia/values/Error.h>
#include <Pelluvia/values/Export.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>

namespace pelluvia {

struct NMEADriverState; // internal

/// How reading a source came to its end.
enum class NMEAEnding : std::uint8_t {
    Complete,    ///< the source ended
    Interrupted, ///< the host has had enough (see `NMEADriver::setEndDescriptor`): all is well
    Stopped,     ///< the host stopped it (see `NMEADriver::setStopToken`)
    Lost,        ///< the receiver's device is gone
    Unreadable,  ///< the source cannot be read, or not any further
    NotOpened    ///< the source cannot be opened; nothing was sent
};

/// A producer: reads NMEA 0183 from a log, a pipe, or a receiver on a serial device, and makes the
/// calls of what it finds. The track is sent while the sentences come, then the waypoints, then the
/// routes, each a transfer of its own and only if there are any. How sentences become points is
/// told in docs/nmea.md.
///
///     NMEADriver driver(*exporter);
///     driver.setStopToken(cancelButton.get_token());
///     if (const ErrorPtr error = driver.processFile("/dev/ttyUSB0")) {
///         show(error->localizedDescription()); // what came before has been sent
///     }
///     show(textOf(driver.tally()));
///     exporter->gpsStateChange(gpsState::finished);
///
/// `gpsStateChange` is not sent: it ends the whole exchange, of which a log may be a part, and is
/// the host's to send.
///
/// Errors are of the domain "NSPOSIXErrorDomain" with the system's error number, a description, and
/// the path if there was one. An error that comes while a source is being read is also given to the
/// receiver's `error`, before its transfer ends. Of a source that was read in vain to its end,
/// since it holds nothing of NMEA 0183, only the tally tells.
///
/// Memory is bounded whatever a source holds (see docs/nmea.md). The driver may read one source
/// after the other.
///
/// Threads: one at a time; the receiver is called on the thread that reads. A stop may be requested
/// on any thread.
class PELLUVIA_EXPORT NMEADriver {
  public:
    /// The receiver is borrowed and must outlive the driver.
    explicit NMEADriver(GPSOutputReceiver &receiver);
    NMEADriver(const NMEADriver &) = delete;
    NMEADriver &operator=(const NMEADriver &) = delete;
    ~NMEADriver();

    /// The date of the first time of day, in days from 1970-01-01 (see `dayOf`). Needed only for
    /// logs without RMC and ZDA; a date in the log goes before it. None by default: the points of
    /// such logs have no time.
    void setDay(std::optional<std::int64_t> day) noexcept;
    /// The day of a text as YYYY-MM-DD; nothing for anything else and for days before 1970.
    [[nodiscard]] static std::optional<std::int64_t> dayOf(std::string_view text) noexcept;

    /// Seconds without a point after which a new segment begins; `usualGap` by default. Less than 0
    /// counts as 0.
    void setLongestGap(std::int64_t seconds) noexcept;
    static constexpr std::int64_t usualGap = 300;

    /// The rate of serial devices, in bits a second, one that `isBaudRate` knows; with any other
    /// they cannot be opened. `standardBaudRate` by default.
    void setBaudRate(long rate) noexcept;
    /// The rate that NMEA 0183 prescribes.
    static constexpr long standardBaudRate = 4800;
    /// Whether serial devices can be set to so many bits a second: one of the usual rates, 300 to
    /// 921600.
    [[nodiscard]] static bool isBaudRate(long rate) noexcept;

    /// Stops reading for good, as when the target's disk is full: once a stop is requested, nothing
    /// is sent any more but the end of a transfer that is open, and an error of the domain
    /// `NSCocoaErrorDomain` with the code `NSUserCancelledError` is returned. Seen before each
    /// call, and while a source is waited for. By default there is nobody to request one.
    void setStopToken(std::stop_token token);

    /// Ends reading as if the source had ended, so that all that came before is a whole result: how
    /// somebody says that a receiver which sends for ever has sent enough. `descriptor` is
    /// borrowed, and reading ends when it becomes, and stays, readable; -1, as at first: there is
    /// none. A signal handler can write to the other end of a pipe. Not seen in text in memory.
    void setEndDescriptor(int descriptor) noexcept;

    /// Called each time that the source has nothing to read at the moment and is about to be waited
    /// for: when a receiver is between two seconds, or a pipe is empty. The time to write out what
    /// targets hold back, so that who reads along has all that is known. It may come many times a
    /// second. Called on the thread that reads, between two calls to the receiver; it must not use
    /// the driver. Never called for a regular file. Empty, as at first: nobody is told.
    void setSourcePaused(std::function<void()> sourcePaused);

    /// Shows on a terminal, in one line that is written again and again, how things stand with a
    /// source that is not a regular file: how many points there are, what fix the receiver has,
    /// where it is, and at what rate points come. `write` puts bytes on the terminal, at most ten
    /// times a second; the line is taken away when reading ends. Empty, as at first: nothing is
    /// shown.
    void setStatusLine(std::function<void(std::string_view bytes)> write);

    /// Reads a file, a named pipe, or a serial device, which is set up for the receiver meanwhile
    /// and then as it was. Null when all went well, also when the host had enough; else the error.
    /// A path that holds a NUL, a device that is no serial line and a rate that there is none are
    /// errors (`ending` is `NotOpened`).
    ErrorPtr processFile(const std::string &path);
    /// Reads an open file, pipe or device, from where it stands to its end. The descriptor is
    /// borrowed and used as it is: a serial device must have been set up.
    ErrorPtr processDescriptor(int descriptor);
    /// Reads a log in memory, borrowed for the call.
    ErrorPtr processText(std::string_view log);

    /// How reading the last source came to its end.
    [[nodiscard]] NMEAEnding ending() const noexcept;
    /// What was found in the last source; asked while it is being read, what had been found when
    /// the block of 64 KB began that is being decoded.
    [[nodiscard]] const NMEATally &tally() const noexcept;
    /// How far the last source has been read. It is read in blocks of 64 KB.
    [[nodiscard]] ReadingProgress readingProgress() const;

  private:
    std::unique_ptr<NMEADriverState> state_;
};

/// Whether a file that begins with these bytes is likely to be a log of NMEA 0183: whether there is
/// a sentence among its first lines, with a right checksum, or without one but of a type that the
/// driver reads. A few hundred bytes are enough; a last line that is cut off does not matter.
[[nodiscard]] PELLUVIA_EXPORT bool looksLikeNMEA(std::string_view beginning);

} // namespace pelluvia
