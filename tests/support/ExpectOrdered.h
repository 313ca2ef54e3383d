// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/model/OrderChecker.h>

#include <gtest/gtest.h>

namespace pelluvia::testing {

/// What the checker saw is the whole of what a producer made, in the order in which producers make
/// their calls.
inline void expectOrdered(const OrderChecker &checker) {
    EXPECT_FALSE(checker.fault()) << checker.fault()->text;
    EXPECT_FALSE(checker.hasOpen()) << "still open: " << checker.open();
}

} // namespace pelluvia::testing
