// SPDX-License-Identifier: MIT

// The recorder compared with a model of it, on random calls in random order.

#include <tests/support/RecorderCalls.h>
#include <tests/support/Sanitized.h>

#include <gtest/gtest.h>
#include <string>
#include <tests/support/Chance.h>

namespace pelluvia {
namespace {

#if PELLUVIA_TESTS_SANITIZED
constexpr int rounds = 300;
#else
constexpr int rounds = 3000;
#endif

TEST(RecorderModel, AgreesOnRandomCallsInRandomOrder) {
    testing::Chance random(20241121);
    std::size_t filed = 0;
    std::int64_t tests = 0;
    for (int round = 0; round < rounds; ++round) {
        std::string bytes(random() % 4000, '\0');
        for (char &c : bytes) {
            c = static_cast<char>(random());
        }
        testing::RecorderCalls calls(bytes);
        ASSERT_EQ(calls.run(), "") << "round " << round;
        filed += testing::filed(calls.model()).size();
        tests += calls.model().thinning.pointTests + calls.model().thinning.slopeTests;
    }
    // The calls are not so random that nothing came of them.
    EXPECT_GT(filed, static_cast<std::size_t>(rounds) * 5U);
    EXPECT_GT(tests, rounds);
}

} // namespace
} // namespace pelluvia
