#include <Pelluvia/model/Version.h>

#include <gtest/gtest.h>

namespace pelluvia {
namespace {

TEST(Version, IsOnePointZeroAndBuildOne) {
    EXPECT_EQ(PelluviaVersionNumber, 1.0);
    EXPECT_STREQ(PelluviaVersionString, "@(#)PROGRAM:Pelluvia  PROJECT:Pelluvia-1\n");
}

} // namespace
} // namespace pelluvia
