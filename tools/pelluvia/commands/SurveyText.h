// SPDX-License-Identifier: MIT

#pragma once

#include <tools/pelluvia/commands/Survey.h>

#include <cstdint>
#include <string>

namespace pelluvia::host {

/// A time as "2020-06-01T08:26:40Z". The year has at least four digits, and a sign before year 0.
[[nodiscard]] std::string utcText(std::int64_t seconds);

/// A survey for a reader: a few aligned lines, and an empty one at the end.
[[nodiscard]] std::string tableText(const std::string &file, const Survey &survey, bool isPartial);

/// A survey for a program: one JSON object on one line.
[[nodiscard]] std::string jsonText(const std::string &file, const Survey &survey, bool isPartial);

} // namespace pelluvia::host
