// SPDX-License-Identifier: MIT

#pragma once

#include <tests/support/Process.h>

#include <string>
#include <utility>
#include <vector>

namespace pelluvia::testing {

/// Runs the program that uses the storage component as another process (StorageProbe.cpp).
[[nodiscard]] inline Outcome
probe(std::vector<std::string> arguments,
      std::vector<std::pair<std::string, std::string>> environment = {}) {
    return run(PELLUVIA_STORAGE_PROBE,
               {.arguments = std::move(arguments), .environment = std::move(environment)});
}

} // namespace pelluvia::testing
