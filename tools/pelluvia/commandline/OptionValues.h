// SPDX-License-Identifier: MIT

#pragma once

#include <tools/pelluvia/commandline/Options.h>

#include <cstdint>
#include <optional>
#include <span>
#include <string>

/// \file
/// The values that options take, read whole or not at all. What is wrong with one is said with a
/// `CLI::ValidationError` that names the option.

namespace pelluvia::host {

/// Refuses an option with a "=" and nothing behind it, as a shell makes of --telemetry=$FILE
/// without a FILE. To CLI11 the next word would be the value: a summary would overwrite a source.
void refuseMissingValues(std::span<const char *const> words);

/// A whole number from 0 on, or `standard` for an option that was not given.
[[nodiscard]] std::int64_t wholeNumberOf(const std::optional<std::string> &text, const char *option,
                                         std::int64_t standard);

/// A tolerance of the thinning: a number from 0 on that is finite in single precision. Nothing for
/// an option that was not given.
[[nodiscard]] std::optional<float> toleranceOf(const std::optional<std::string> &text,
                                               const char *option);

/// What `--only` chooses: kinds of transfers with commas between.
[[nodiscard]] Selection selectionOf(const std::string &list);

} // namespace pelluvia::host
