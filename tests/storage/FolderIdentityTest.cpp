// SPDX-License-Identifier: MIT

#include <Pelluvia/storage/internal/FolderIdentity.h>

#include <gtest/gtest.h>

namespace pelluvia::storage {
namespace {

const FolderIdentity kept{.device = 1, .inode = 2, .born = "3.4"};

TEST(FolderIdentity, AFolderIsKnownByInodeAndBirthWhateverItsDisksNumber) {
    EXPECT_TRUE(isTakenFor({9, 2, "3.4"}, kept));
    EXPECT_FALSE(isTakenFor({1, 9, "3.4"}, kept));
    EXPECT_FALSE(isTakenFor({1, 2, "9.9"}, kept)); // the inode was given to a new folder
}

TEST(FolderIdentity, WhatTheSystemDoesNotTellSpeaksAgainstNoFolderInItsPlace) {
    EXPECT_TRUE(isTakenFor({1, 2, ""}, kept));
    EXPECT_TRUE(isTakenFor({1, 2, "3.4"}, {1, 2, ""}));
    EXPECT_FALSE(isTakenFor({1, 9, ""}, kept));
    EXPECT_TRUE(isTakenFor({1, 9, "", false}, kept));
    EXPECT_TRUE(isTakenFor({1, 9, "3.4", false}, kept));
    EXPECT_FALSE(isTakenFor({1, 9, "9.9", false}, kept));
}

TEST(FolderIdentity, ElsewhereInodeAndBirthMustBothBeKnown) {
    EXPECT_TRUE(isSurely({9, 2, "3.4"}, kept));
    EXPECT_FALSE(isSurely({1, 2, ""}, kept));
    EXPECT_FALSE(isSurely({1, 2, "3.4"}, {1, 2, ""}));
    EXPECT_FALSE(isSurely({1, 2, ""}, {1, 2, ""}));
    EXPECT_FALSE(isSurely({1, 9, "3.4"}, kept));
}

} // namespace
} // namespace pelluvia::storage
