// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace pelluvia::nmea {

/// The most names that `routeSentences` takes.
inline constexpr std::size_t mostRouteNames = 100'000;

/// The bodies of the RTE sentences of a route: as few as hold all names with none longer than a
/// sentence may be; one without names for a route without points. The identifier and the names must
/// be safe (see `safeName`).
[[nodiscard]] std::vector<std::string> routeSentences(std::string_view identifier,
                                                      const std::vector<std::string> &names);

} // namespace pelluvia::nmea
