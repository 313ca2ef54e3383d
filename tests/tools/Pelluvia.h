// SPDX-License-Identifier: MIT

#pragma once

#include <tests/support/Process.h>
#include <tests/support/TemporaryFolder.h>

#include <string>
#include <utility>
#include <vector>

namespace pelluvia::testing {

/// Runs the command with arguments.
[[nodiscard]] inline Outcome pelluvia(std::vector<std::string> arguments) {
    return run(PELLUVIA_PROGRAM, {.arguments = std::move(arguments)});
}

/// Runs the command in another way.
[[nodiscard]] inline Outcome pelluvia(const Run &how) {
    return run(PELLUVIA_PROGRAM, how);
}

/// A good GPX file of all kinds.
[[nodiscard]] inline std::string ride() {
    return fixture("tools/ride.gpx");
}

} // namespace pelluvia::testing
