// SPDX-License-Identifier: MIT

#pragma once

#include <tools/pelluvia/commandline/Options.h>

namespace pelluvia::host {

/// Runs `pelluvia convert` and returns its exit status; says on standard error what went wrong.
[[nodiscard]] int convert(const ConvertOptions &options);

} // namespace pelluvia::host
