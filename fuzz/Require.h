// SPDX-License-Identifier: MIT

#pragma once

#include <cstdio>
#include <cstdlib>

namespace pelluvia::fuzz {

/// Stops the program, which the fuzzer keeps as a finding, when a rule does not hold.
inline void require(bool holds, const char *rule) {
    if (!holds) {
        std::fprintf(stderr, "broken rule: %s\n", rule);
        std::abort();
    }
}

} // namespace pelluvia::fuzz
