// SPDX-License-Identifier: MIT

#include <Pelluvia/storage/internal/FolderWalk.h>

#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <tests/support/TemporaryFolder.h>

namespace pelluvia::storage {
namespace {

class FolderWalk : public ::testing::Test {
  protected:
    FolderWalk() { std::filesystem::create_directories(folder.file("a/b")); }

    WalkResult walk(const std::string &path) { return walkTo(path, identity); }

    testing::TemporaryFolder folder;
    FolderIdentity identity;
};

TEST_F(FolderWalk, ArrivesWithTheFoldersIdentity) {
    struct stat status {};
    ASSERT_EQ(::stat(folder.file("a/b").c_str(), &status), 0);
    EXPECT_EQ(walk(folder.file("a/b")), WalkResult::Arrived);
    EXPECT_EQ(identity.device, status.st_dev);
    EXPECT_EQ(identity.inode, status.st_ino);
    struct statx more {};
    if (::statx(AT_FDCWD, folder.file("a/b").c_str(), 0, STATX_BTIME, &more) == 0 &&
        (more.stx_mask & STATX_BTIME) != 0) {
        EXPECT_EQ(identity.born, std::to_string(more.stx_btime.tv_sec) + "." +
                                     std::to_string(more.stx_btime.tv_nsec));
    }
    EXPECT_EQ(walk("/"), WalkResult::Arrived);
    EXPECT_EQ(walk(folder.file("a/b/")), WalkResult::Arrived);
}

TEST_F(FolderWalk, GoesAbsolutePathsOnly) {
    for (const std::string &path :
         {std::string(), std::string("."), std::string("a/b"), std::string("~/a"),
          folder.file("a/../a"), folder.file("a/./b"), folder.file("a//b"), folder.file("a/.."),
          folder.file("a") + std::string(1, '\0') + "/b"}) {
        EXPECT_EQ(walk(path), WalkResult::NotAPath) << path;
    }
}

TEST_F(FolderWalk, FollowsNoSymbolicLink) {
    std::filesystem::create_directory_symlink(folder.file("a"), folder.file("link"));
    EXPECT_EQ(walk(folder.file("link")), WalkResult::SymbolicLink);
    EXPECT_EQ(walk(folder.file("link/b")), WalkResult::SymbolicLink);
    std::filesystem::create_directory_symlink("b", folder.file("a/inside"));
    EXPECT_EQ(walk(folder.file("a/inside")), WalkResult::SymbolicLink);
}

TEST_F(FolderWalk, TellsWhatIsInTheWay) {
    folder.write("file", "");
    EXPECT_EQ(walk(folder.file("file")), WalkResult::NotAFolder);
    EXPECT_EQ(walk(folder.file("file/b")), WalkResult::NotAFolder);
    EXPECT_EQ(walk(folder.file("missing")), WalkResult::Gone);
    EXPECT_EQ(walk(folder.file("missing/b")), WalkResult::Gone);
    EXPECT_EQ(walk("/" + std::string(100'000, 'x')), WalkResult::OtherError);
    EXPECT_EQ(walk(folder.file("a") + std::string(100'000, '/')), WalkResult::NotAPath);
}

} // namespace
} // namespace pelluvia::storage
