// SPDX-License-Identifier: MIT

#include <Pelluvia/model/GPSPoint.h>

#include <cstring>
#include <gtest/gtest.h>
#include <type_traits>

namespace pelluvia {
namespace {

TEST(GPSPoint, IsAPlainRecordOfFiveFieldsOfEightBytes) {
    static_assert(std::is_trivially_copyable_v<GPSPoint>);
    static_assert(std::is_standard_layout_v<GPSPoint>);
    static_assert(std::is_same_v<decltype(GPSPoint::latitude), double>);
    static_assert(std::is_same_v<decltype(GPSPoint::longitude), double>);
    static_assert(std::is_same_v<decltype(GPSPoint::altitude), double>);
    static_assert(std::is_same_v<decltype(GPSPoint::time), std::int64_t>);
    static_assert(std::is_same_v<decltype(GPSPoint::test), std::int64_t>);
    EXPECT_EQ(sizeof(GPSPoint), 40U);
}

TEST(GPSPoint, HoldsItsFieldsInTheListedOrder) {
    const GPSPoint point{1.5, -2.5, 3.5, 4, 5};
    double reals[3];
    std::int64_t integers[2];
    const char *bytes = reinterpret_cast<const char *>(&point);
    std::memcpy(reals, bytes, sizeof reals);
    std::memcpy(integers, bytes + sizeof reals, sizeof integers);
    EXPECT_EQ(reals[0], 1.5);
    EXPECT_EQ(reals[1], -2.5);
    EXPECT_EQ(reals[2], 3.5);
    EXPECT_EQ(integers[0], 4);
    EXPECT_EQ(integers[1], 5);
}

TEST(GPSPoint, StartsWithoutAltitudeTimeAndTest) {
    const GPSPoint point;
    EXPECT_EQ(point.altitude, 0.0);
    EXPECT_EQ(point.time, 0);
    EXPECT_EQ(point.test, 0);
}

TEST(GPSPoint, DataOnlyLatitudesBeginAbove91) {
    EXPECT_EQ(dataOnlyLatitude, 91.0);
}

} // namespace
} // namespace pelluvia
