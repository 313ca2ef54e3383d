// SPDX-License-Identifier: MIT

#pragma once

#include <tests/support/Process.h>
#include <tests/support/Sanitized.h>
#include <tests/support/TemporaryFolder.h>

#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <utility>

namespace pelluvia::testing {

/// The outcome of a run, and whether the call that was to fail was made.
struct FaultyOutcome : Outcome {
    bool wasHit = false;
};

/// Runs the command with a fault, as tests/faults/injection tells it, or with none ("").
[[nodiscard]] inline FaultyOutcome runWithFault(Run how, const std::string &fault) {
    const TemporaryFolder folder;
    const std::string seen = folder.file("seen");
    how.environment.insert(how.environment.end(), {{"LD_PRELOAD", PELLUVIA_FAULT_INJECTION},
                                                   {"LC_ALL", "C"},
                                                   {"PELLUVIA_FAULT", fault},
                                                   {"PELLUVIA_FAULT_SEEN", seen}});
    FaultyOutcome outcome{run(PELLUVIA_PROGRAM, how)};
    outcome.wasHit = std::filesystem::exists(seen);
    return outcome;
}

/// Tests that run the command with faults. The library that makes them must be the first that is
/// loaded; so must a sanitizer's runtime.
template <class Base>
class FaultTest : public Base {
  protected:
    void SetUp() override {
#if PELLUVIA_TESTS_SANITIZED
        GTEST_SKIP() << "the sanitizer's runtime leaves no room for a library before it";
#endif
    }
};

} // namespace pelluvia::testing
