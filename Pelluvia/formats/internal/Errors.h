// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/values/Error.h>

#include <string>
#include <string_view>
#include <system_error>

/// \file
/// The errors that the producers of formats have in common.

namespace pelluvia::formats {

/// The domain of the operating system's own error numbers.
inline constexpr std::string_view posixErrorDomain = "NSPOSIXErrorDomain";

/// An error of the operating system, with what it means here. An empty path is left out.
[[nodiscard]] ErrorPtr systemError(const std::error_code &error, std::string description,
                                   const std::string &path);

/// The host has stopped the producer.
[[nodiscard]] ErrorPtr stopError();

} // namespace pelluvia::formats
