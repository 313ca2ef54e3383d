// SPDX-License-Identifier: MIT

#include <Pelluvia/values/URL.h>

#include <gtest/gtest.h>

namespace pelluvia {
namespace {

TEST(URL, KeepsThePathAsItWasGiven) {
    for (const std::string_view path :
         {"/a/b.gpx", "b.gpx", "../a b%20.gpx", "", "Z\xC3\xBCrich"}) {
        EXPECT_EQ(URL::fileURLWithPath(path).path(), path);
    }
}

TEST(URL, IsEqualWhenThePathsAre) {
    EXPECT_EQ(URL::fileURLWithPath("a"), URL::fileURLWithPath("a"));
    EXPECT_FALSE(URL::fileURLWithPath("a") == URL::fileURLWithPath("./a"));
}

} // namespace
} // namespace pelluvia
