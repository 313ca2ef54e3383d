// SPDX-License-Identifier: MIT

#pragma once

#include <tools/pelluvia/commandline/Options.h>

namespace pelluvia::host {

/// Reads the arguments of the program (`argv[0]` is its name) and does nothing else. No file is
/// opened; of some it is asked whether they are there, and whether two paths lead to the same one.
/// What is wrong with the arguments is an `Answer`.
[[nodiscard]] Command parseCommandLine(int argc, const char *const *argv);

} // namespace pelluvia::host
