// SPDX-License-Identifier: MIT

#include <Pelluvia/model/Version.h>

#include <gtest/gtest.h>
#include <string>

namespace pelluvia {
namespace {

TEST(Version, IsOnePointZeroAndBuildOne) {
    EXPECT_EQ(PelluviaVersionNumber, 1.0);
    EXPECT_STREQ(PelluviaVersionString, "@(#)PROGRAM:Pelluvia  PROJECT:Pelluvia-1\n");
}

TEST(Version, OfTheHeadersIsThatOfTheProject) {
    EXPECT_EQ(std::to_string(PELLUVIA_VERSION_MAJOR) + '.' +
                  std::to_string(PELLUVIA_VERSION_MINOR) + '.' +
                  std::to_string(PELLUVIA_VERSION_PATCH),
              PELLUVIA_PROJECT_VERSION);
}

TEST(Version, IsAtLeastItselfAndWhatIsOlder) {
    constexpr int major = PELLUVIA_VERSION_MAJOR;
    constexpr int minor = PELLUVIA_VERSION_MINOR;
    constexpr int patch = PELLUVIA_VERSION_PATCH;
    static_assert(PELLUVIA_VERSION_AT_LEAST(major, minor, patch));
    static_assert(PELLUVIA_VERSION_AT_LEAST(major - 1, 999, 999));
    static_assert(PELLUVIA_VERSION_AT_LEAST(0, 0, 0));
    static_assert(!PELLUVIA_VERSION_AT_LEAST(major, minor, patch + 1));
    static_assert(!PELLUVIA_VERSION_AT_LEAST(major, minor + 1, 0));
    static_assert(!PELLUVIA_VERSION_AT_LEAST(major + 1, 0, 0));
#if !PELLUVIA_VERSION_AT_LEAST(1, 0, 0)
#error "also for the preprocessor"
#endif
    SUCCEED();
}

} // namespace
} // namespace pelluvia
