// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/values/Export.h>

#include <functional>
#include <string_view>

/// \file
/// The diagnostics of the framework: single lines for the system log.

namespace pelluvia {

/// Takes one line, without a line end; the view is valid during the call only.
using LogSink = std::function<void(std::string_view line)>;

/// Writes one line to the system log, or hands it to the host's sink. Control characters, line ends
/// among them, are replaced by spaces, since what is logged may come from a file. A line for which
/// there is no memory, or whose sink throws, is lost.
///
/// Threads: callable from any thread; a sink must allow the same.
PELLUVIA_EXPORT void logLine(std::string_view text) noexcept;

/// Sends all lines from now on to `sink` instead of the system log; an empty function restores it.
/// Another thread that is logging at that moment may still call the old sink.
///
/// Threads: callable from any thread, a sink included.
PELLUVIA_EXPORT void setLogSink(LogSink sink);

} // namespace pelluvia
