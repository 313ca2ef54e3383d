#pragma once

#include <cstddef>

/// \file
/// What one line of a call log may ask of its reader. Beyond a limit is an error, like bad JSON, so
/// that a hostile log costs neither memory nor time.

namespace pelluvia::callLogLimits {

/// Bytes of a line.
inline constexpr std::size_t lineSize = std::size_t{16} * 1024 * 1024;
/// Objects and arrays inside one another, the line's own object among them.
inline constexpr std::size_t depth = 64;
/// Keys of one dictionary: they are searched from the front.
inline constexpr std::size_t keys = 1000;

} // namespace pelluvia::callLogLimits
