// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/formats/nmea/NMEADriver.h>

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

/// \file
/// What the command line asks for. Plain data; made by `parseCommandLine`, read by the commands.

namespace pelluvia::host {

/// How a source or a target is written.
enum class Format {
    GPX,
    Calls, ///< a call log: one receiver call a line (docs/call-log.md)
    NMEA   ///< NMEA 0183, from a log or a receiver
};

/// Which kinds of transfers are converted.
struct Selection {
    bool tracks = true;
    bool routes = true;
    bool waypoints = true;

    [[nodiscard]] bool isEverything() const noexcept { return tracks && routes && waypoints; }
};

struct Source {
    std::string path; ///< "-" is standard input
    Format format = Format::GPX;
};

/// How the calls of the producers are recorded before they reach the target. Asked for by any of
/// its options.
struct RecordingOptions {
    bool isWanted = false;
    bool minimize = false;                ///< thin tracks
    std::optional<float> pointSlop;       ///< degrees; nothing: the recorder's own
    std::optional<float> slopeSlop;       ///< likewise, without a unit
    std::optional<std::string> telemetry; ///< where the summary goes; "-" is standard output
};

/// How sources of NMEA are read; see `NMEADriver`.
struct NMEAOptions {
    long baud = NMEADriver::standardBaudRate;
    std::int64_t longestGap = NMEADriver::usualGap; ///< seconds
    std::optional<std::int64_t> day;                ///< from 1970-01-01
};

struct ConvertOptions {
    std::vector<Source> sources; ///< read in this order, into one target
    std::string target;          ///< "-" is standard output
    Format targetFormat = Format::GPX;
    Selection only;
    NMEAOptions nmea; ///< for sources of that format
    RecordingOptions recording;
    std::string
        creator; ///< for the header of a GPX target, as XML attribute text; empty: the default
    bool force = false;   ///< files that are there may be replaced
    bool sync = false;    ///< a result is on the disk when the command ends
    bool quiet = false;   ///< no progress bar
    bool verbose = false; ///< the framework's log lines on standard error, not in the system log
};

struct InfoOptions {
    std::vector<Source> sources;
    bool json = false;
    bool verbose = false;
};

/// `authorize` or `authorized`.
struct StorageOptions {
    std::string folder;
    bool isQuestion = false; ///< `authorized`: only say what has been granted
    bool verbose = false;
};

/// A command line that is answered at once: help, the version, or a complaint about the usage.
struct Answer {
    int status = 0;
    std::string output;
    std::string complaint;
};

using Command = std::variant<ConvertOptions, InfoOptions, StorageOptions, Answer>;

} // namespace pelluvia::host
