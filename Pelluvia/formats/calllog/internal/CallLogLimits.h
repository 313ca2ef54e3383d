// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>

/// \file
/// What one line of a call log may ask of its reader. Beyond a limit is an error, like bad JSON, so
/// that a hostile log costs neither memory nor time. And what its writer leaves out to stay below.

namespace pelluvia::callLogLimits {

/// Bytes of a line.
inline constexpr std::size_t lineSize = std::size_t{16} * 1024 * 1024;
/// Objects and arrays inside one another, the line's own object among them.
inline constexpr std::size_t depth = 64;
/// Keys of one dictionary: they are searched from the front.
inline constexpr std::size_t keys = 1000;
/// Values of one array that is written; a longer one is left out. With a recorded track come all
/// its points, which follow as calls of their own: a track of some hours would be a line that no
/// reader takes. `lineSize` leaves more than 800 bytes for each value.
inline constexpr std::size_t elements = 20'000;

} // namespace pelluvia::callLogLimits
