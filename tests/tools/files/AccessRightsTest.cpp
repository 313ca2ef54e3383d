// SPDX-License-Identifier: MIT

#include <tools/pelluvia/files/AccessRights.h>

#include <tests/support/TemporaryFolder.h>

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <grp.h>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace pelluvia::host {
namespace {

using testing::TemporaryFolder;

struct stat statusOf(const std::string &path) {
    struct stat status = {};
    EXPECT_EQ(::stat(path.c_str(), &status), 0);
    return status;
}

mode_t permissionsOf(const std::string &path) {
    return statusOf(path).st_mode & 07777U;
}

AccessRights rightsOf(const std::string &path) {
    return {path, statusOf(path)};
}

/// Makes a file as one is made that is to take another's place.
void makeWith(const AccessRights &rights, const std::string &path) {
    const int file =
        ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, rights.initialMode());
    rights.giveTo(file);
    ::close(file);
}

TEST(AccessRights, PermissionsAreTheSameWhereOwnerAndGroupAre) {
    for (mode_t mode = 0; mode <= 0777; ++mode) {
        EXPECT_EQ(AccessRights::narrowed(mode, true, true), mode);
    }
}

/// What a user may do with a file of this mode.
mode_t accessOf(mode_t mode, bool isOwner, bool isMember) {
    return (isOwner ? mode >> 6U : isMember ? mode >> 3U : mode) & 07U;
}

TEST(AccessRights, NobodyGainsByAChangeOfOwnerOrGroup) {
    for (mode_t mode = 0; mode <= 0777; ++mode) {
        for (const bool isSameOwner : {false, true}) {
            for (const bool isSameGroup : {false, true}) {
                const mode_t after = AccessRights::narrowed(mode, isSameOwner, isSameGroup);
                // Everybody but the new owner: owner or not, member of either group or not.
                for (const int who : {0, 1, 2, 3, 4, 5, 6, 7}) {
                    const bool wasOwner = (who & 1) != 0;
                    const bool wasMember = (who & 2) != 0;
                    const bool isMember = isSameGroup ? wasMember : (who & 4) != 0;
                    const mode_t had = accessOf(mode, wasOwner, wasMember);
                    const mode_t has = accessOf(after, wasOwner && isSameOwner, isMember);
                    ASSERT_EQ(has & ~had, 0U) << std::oct << mode << " becomes " << after;
                }
            }
        }
    }
}

TEST(AccessRights, WhatAnotherGroupMayDoIsWhatEverybodyCould) {
    EXPECT_EQ(AccessRights::narrowed(0644, true, false), 0644U);
    EXPECT_EQ(AccessRights::narrowed(0660, true, false), 0600U);
    EXPECT_EQ(AccessRights::narrowed(0664, true, false), 0644U);
    EXPECT_EQ(AccessRights::narrowed(0606, true, false), 0600U);
    EXPECT_EQ(AccessRights::narrowed(0466, false, true), 0444U);
}

TEST(AccessRights, ANewFileIsNeverWiderThanTheOldOne) {
    const TemporaryFolder folder;
    const std::string old = folder.write("old", "");
    for (const mode_t mode : {0600U, 0640U, 0400U, 0200U, 0060U, 0777U}) {
        ASSERT_EQ(::chmod(old.c_str(), mode), 0);
        EXPECT_EQ(rightsOf(old).initialMode() & ~(mode & 0700U), 0U);
        const std::string path = folder.file("new" + std::to_string(mode));
        makeWith(rightsOf(old), path);
        EXPECT_EQ(permissionsOf(path), mode);
    }
}

TEST(AccessRights, SpecialBitsAreNotPassedOn) {
    const TemporaryFolder folder;
    const std::string old = folder.write("old", "");
    ASSERT_EQ(::chmod(old.c_str(), 06755), 0);
    makeWith(rightsOf(old), folder.file("new"));
    EXPECT_EQ(permissionsOf(folder.file("new")), 0755U);
}

/// An access control list as the kernel takes it: user::rw- user:1:rw- group::--- mask::rw-
/// other::---, which shows as the mode 0660 though the group may do nothing.
constexpr std::array<unsigned char, 44> listWithOneUser = {
    2,    0, 0, 0,                          // version
    1,    0, 6, 0, 0xFF, 0xFF, 0xFF, 0xFF,  // owner
    2,    0, 6, 0, 1,    0,    0,    0,     // the user 1
    4,    0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF,  // group
    0x10, 0, 6, 0, 0xFF, 0xFF, 0xFF, 0xFF,  // mask
    0x20, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF}; // others
constexpr const char *listName = "system.posix_acl_access";

bool setList(const std::string &path) {
    return ::setxattr(path.c_str(), listName, listWithOneUser.data(), listWithOneUser.size(), 0) ==
           0;
}

TEST(AccessRights, AnAccessControlListIsPassedOn) {
    const TemporaryFolder folder;
    const std::string old = folder.write("old", "");
    if (!setList(old)) {
        GTEST_SKIP() << "the file system of " << folder.path() << " has no such lists";
    }
    ASSERT_EQ(permissionsOf(old), 0660U);
    const std::string path = folder.file("new");
    makeWith(rightsOf(old), path);
    std::array<unsigned char, 100> list{};
    ASSERT_EQ(::getxattr(path.c_str(), listName, list.data(), list.size()),
              static_cast<ssize_t>(listWithOneUser.size()));
    EXPECT_TRUE(std::equal(listWithOneUser.begin(), listWithOneUser.end(), list.begin()));
    EXPECT_EQ(permissionsOf(path), 0660U);
}

TEST(AccessRights, AListThatTheFolderGivesIsTakenAway) {
    const TemporaryFolder folder;
    const std::string old = folder.write("old", "");
    ASSERT_EQ(::chmod(old.c_str(), 0640), 0);
    if (::setxattr(folder.path().c_str(), "system.posix_acl_default", listWithOneUser.data(),
                   listWithOneUser.size(), 0) != 0) {
        GTEST_SKIP() << "the file system of " << folder.path() << " has no such lists";
    }
    const std::string path = folder.file("new");
    makeWith(rightsOf(old), path);
    EXPECT_LT(::getxattr(path.c_str(), listName, nullptr, 0), 0);
    EXPECT_EQ(permissionsOf(path), 0640U);
}

constexpr uid_t somebody = 12345;
constexpr gid_t theirGroup = 12346;
constexpr gid_t anotherGroup = 12347;

/// Makes the new file in a process of somebody who is a member of one more group.
void makeAsSomebody(const AccessRights &rights, const std::string &path, gid_t memberOf) {
    const pid_t child = ::fork();
    if (child == 0) {
        const bool isSomebody =
            ::setgroups(1, &memberOf) == 0 && ::setgid(theirGroup) == 0 && ::setuid(somebody) == 0;
        if (isSomebody) {
            makeWith(rights, path);
        }
        ::_exit(isSomebody ? 0 : 1);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
}

/// A file of the mode 0664 that belongs to an owner and a group, and what was made in its place by
/// somebody who is a member of one more group than their own.
struct stat statusOfReplacement(uid_t owner, gid_t group, gid_t memberOf) {
    const TemporaryFolder folder;
    EXPECT_EQ(::chmod(folder.path().c_str(), 0777), 0);
    const std::string old = folder.write("old", "");
    EXPECT_EQ(::chown(old.c_str(), owner, group), 0);
    EXPECT_EQ(::chmod(old.c_str(), 0664), 0);
    makeAsSomebody(rightsOf(old), folder.file("new"), memberOf);
    return statusOf(folder.file("new"));
}

TEST(AccessRights, TheGroupIsKeptByItsMembers) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root can act as somebody else";
    }
    for (const uid_t owner : {somebody, somebody + 1}) {
        const struct stat status = statusOfReplacement(owner, anotherGroup, anotherGroup);
        EXPECT_EQ(status.st_uid, somebody);
        EXPECT_EQ(status.st_gid, anotherGroup);
        EXPECT_EQ(status.st_mode & 07777U, 0664U);
    }
}

TEST(AccessRights, AGroupThatCannotBeKeptNarrowsThePermissions) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root can act as somebody else";
    }
    const struct stat status = statusOfReplacement(somebody, anotherGroup, theirGroup);
    EXPECT_EQ(status.st_gid, theirGroup);
    EXPECT_EQ(status.st_mode & 07777U, 0644U);
}

TEST(AccessRights, WhoMayGiveFilesAwayKeepsTheOwner) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root can give files away";
    }
    const TemporaryFolder folder;
    const std::string old = folder.write("old", "");
    ASSERT_EQ(::chown(old.c_str(), somebody, anotherGroup), 0);
    makeWith(rightsOf(old), folder.file("new"));
    EXPECT_EQ(statusOf(folder.file("new")).st_uid, somebody);
    EXPECT_EQ(statusOf(folder.file("new")).st_gid, anotherGroup);
}

} // namespace
} // namespace pelluvia::host
