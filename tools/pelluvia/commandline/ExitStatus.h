// SPDX-License-Identifier: MIT

#pragma once

/// The exit statuses of all commands; never renumbered.
namespace pelluvia::host::exitStatus {
/// All that was asked for is done.
inline constexpr int done = 0;
/// A source was missing, unreadable or bad, or there was not memory enough for it.
inline constexpr int badInput = 1;
/// The command line is wrong, or would replace a file without saying so.
inline constexpr int wrongUsage = 2;
/// The result could not be written, nor, for a source that must be kept meanwhile, its copy.
inline constexpr int cannotWrite = 3;
} // namespace pelluvia::host::exitStatus
