#pragma once

#include <tools/pelluvia/Options.h>

namespace pelluvia::host {

/// Reads the arguments of the program (`argv[0]` is its name) and does nothing else: no file is
/// looked at. What is wrong with them is an `Answer`.
[[nodiscard]] Command parseCommandLine(int argc, const char *const *argv);

} // namespace pelluvia::host
