#pragma once

#include <Pelluvia/values/Error.h>

#include <string>
#include <system_error>

/// \file
/// The errors that the producers of formats have in common.

namespace pelluvia::formats {

/// An error of the operating system, with what it means here. An empty path is left out.
[[nodiscard]] ErrorPtr systemError(const std::error_code &error, std::string description,
                                   const std::string &path);

/// The host has stopped the producer.
[[nodiscard]] ErrorPtr stopError();

} // namespace pelluvia::formats
