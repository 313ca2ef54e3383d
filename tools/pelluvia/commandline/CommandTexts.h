// SPDX-License-Identifier: MIT

#pragma once

#include <string>
#include <string_view>

/// \file
/// The texts of the help pages that are not made from the options.

namespace pelluvia::host {

/// How a command, or the program ("pelluvia"), is called.
[[nodiscard]] constexpr std::string_view usageOf(std::string_view command) {
    if (command == "convert") {
        return "pelluvia convert [OPTIONS] SOURCE... TARGET";
    }
    if (command == "info") {
        return "pelluvia info [OPTIONS] FILE...";
    }
    if (command == "authorize") {
        return "pelluvia authorize [-v] FOLDER";
    }
    if (command == "authorized") {
        return "pelluvia authorized [-v] FOLDER";
    }
    return "pelluvia COMMAND ... | --version | --help";
}

/// What to say when a command is called without its files.
[[nodiscard]] inline std::string missingFilesOf(std::string_view command) {
    return command == "convert" ? "a source and a target are needed"
           : command == "info"  ? "a file is needed; - is standard input"
                                : "a folder is needed";
}

inline constexpr std::string_view programFooter =
    R"(Each command has its own page, for instance: pelluvia convert --help.

Examples:
  pelluvia convert ride.gpx clean.gpx
  pelluvia convert --to calls ride.gpx -
  pelluvia info ride.gpx)";

inline constexpr std::string_view convertFooter =
    R"(All sources are read, one after the other, into the one target. Formats are told
by the ending, .gpx, .jsonl (a call log: one call a line), .nmea or .log (NMEA
0183), unless --from or --to name them; standard input and output are GPX unless
they do.

An NMEA source may be a serial device. It is read until Ctrl-C, SIGTERM or the
end of the terminal, which bring the target to a proper end. What was not used
of a source is said in one line. What is known is written whenever the receiver
pauses, so another program can read along.

With --record, --minimize, a slop or --telemetry all sources are recorded in
memory and then replayed: waypoints, routes, tracks, each track in one segment.
--minimize leaves out points on the way; a --point-slop or --slope-slop asks for
that too.

Of a route, a GPX target holds the name and the comment but not the points; a
call log holds all that was read.

The target gets its name when it is complete. A file that is already there is
replaced only with --force. When a source turns out bad, the others are read all
the same. What was read is kept and said to be partial: under the target's name
if that is free, or else as TARGET.partial (TARGET.partial.2 and so on). That is
also where what comes from a receiver lies until it is complete.

Exit status:
  0  done
  1  a source was missing, unreadable or bad
  2  wrong usage, or a file is already there and --force was not given
  3  the target could not be written; what was there is as it was, unless a
     message says otherwise

Examples:
  pelluvia convert monday.gpx tuesday.gpx week.gpx
  pelluvia convert --only waypoints caches.gpx waypoints.gpx
  pelluvia convert --to calls ride.gpx - | less
  pelluvia convert calls.jsonl ride.gpx
  zcat ride.gpx.gz | pelluvia convert - ride.gpx
  pelluvia convert --minimize --telemetry - ride.gpx small.gpx
  pelluvia convert --date 2024-08-15 logger.nmea ride.gpx
  pelluvia convert --from nmea --baud 9600 /dev/ttyUSB0 ride.gpx
  gpspipe -r | pelluvia convert --from nmea - ride.gpx)";

inline constexpr std::string_view infoFooter =
    R"(Prints for each file how many waypoints, routes and tracks it holds, their
bounds and the first and last time of their points. Positions off the globe do
not count for the bounds. Formats are told by the ending, as by convert, or by
--from; without either a file is GPX. Of NMEA logs and call logs that is what a
conversion would make of them.

Exit status:
  0  done
  1  a file was missing, unreadable or bad; what was counted before the fault is
     printed and said to be partial, and the other files are handled
  2  wrong usage
  3  the result could not be written

Examples:
  pelluvia info *.gpx
  pelluvia info --from nmea logger.txt
  pelluvia info --json ride.gpx | jq .tracks)";

inline constexpr std::string_view authorizeFooter =
    R"(Asks the user, with the desktop's own panel, for access to a folder, keeps what
was granted, and prints its URL. The user may choose another folder than the one
named; it is then the one that is granted for this name. Two spellings of a
folder are two names, so give the whole path.

Needs the storage component of Pelluvia and a desktop with a portal.

Exit status:
  0  done
  1  no folder was granted: cancelled, or nobody can be asked here
  2  wrong usage
  3  the grant could not be kept, or the result not be written

Example:
  pelluvia authorize ~/GPS)";

inline constexpr std::string_view authorizedFooter =
    R"(Prints the URL of the folder that was granted for the name with pelluvia
authorize.

Exit status:
  0  there is a grant, and its folder is there and can be read
  1  there is none
  2  wrong usage
  3  the result could not be written

Example:
  pelluvia authorized ~/GPS)";

} // namespace pelluvia::host
