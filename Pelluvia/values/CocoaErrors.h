// SPDX-License-Identifier: MIT

#pragma once

#include <cstdint>
#include <string_view>

/// \file
/// The domain and the published codes of the errors that belong to the platform itself.

namespace pelluvia {

inline constexpr std::string_view NSCocoaErrorDomain = "NSCocoaErrorDomain";

/// In that domain: the user has closed a panel without choosing.
inline constexpr std::int64_t userCanceledPanel = -128;
/// In that domain: the host has stopped what was under way.
inline constexpr std::int64_t NSUserCancelledError = 3072;
/// In that domain: reading failed for a reason that has no code of its own.
inline constexpr std::int64_t NSFileReadUnknownError = 256;
/// In that domain: the user must not read the file.
inline constexpr std::int64_t NSFileReadNoPermissionError = 257;
/// In that domain: the name of the file is none.
inline constexpr std::int64_t NSFileReadInvalidFileNameError = 258;
/// In that domain: what was read is damaged, or not of the format expected.
inline constexpr std::int64_t NSFileReadCorruptFileError = 259;
/// In that domain: there is no such file.
inline constexpr std::int64_t NSFileReadNoSuchFileError = 260;

} // namespace pelluvia
