// SPDX-License-Identifier: MIT

#include <Pelluvia/model/TransferKind.h>

#include <gtest/gtest.h>
#include <type_traits>

namespace pelluvia {
namespace {

TEST(TransferKind, HasTheNumbersOfTheProtocol) {
    static_assert(std::is_convertible_v<transferKind::Kind, int>);
    static_assert(std::is_same_v<std::underlying_type_t<transferKind::Kind>, int>);
    EXPECT_EQ(transferKind::tracks, 1);
    EXPECT_EQ(transferKind::routes, 2);
    EXPECT_EQ(transferKind::waypoints, 3);
}

TEST(GPSState, FinishedIsZero) {
    static_assert(std::is_convertible_v<gpsState::State, int>);
    static_assert(std::is_same_v<std::underlying_type_t<gpsState::State>, int>);
    EXPECT_EQ(gpsState::finished, 0);
}

} // namespace
} // namespace pelluvia
