// SPDX-License-Identifier: MIT

#pragma once

#include <tools/pelluvia/commandline/Options.h>

namespace pelluvia::host {

/// Runs `pelluvia info` and returns its exit status: writes what each file holds to standard output
/// and what went wrong to standard error.
[[nodiscard]] int info(const InfoOptions &options);

} // namespace pelluvia::host
