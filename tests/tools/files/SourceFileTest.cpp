// SPDX-License-Identifier: MIT

#include <tools/pelluvia/files/SourceFile.h>

#include <tests/support/TemporaryFolder.h>

#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>

namespace pelluvia::host {
namespace {

namespace fs = std::filesystem;
using testing::readFile;
using ::testing::StartsWith;
using testing::TemporaryFolder;

/// A pipe that holds a text.
class FilledPipe {
  public:
    explicit FilledPipe(std::string_view text) {
        EXPECT_EQ(::pipe2(ends_, O_CLOEXEC), 0);
        EXPECT_EQ(::write(ends_[1], text.data(), text.size()), static_cast<ssize_t>(text.size()));
        ::close(ends_[1]);
    }
    FilledPipe(const FilledPipe &) = delete;
    FilledPipe &operator=(const FilledPipe &) = delete;
    ~FilledPipe() { ::close(ends_[0]); }

    [[nodiscard]] std::string path() const { return "/dev/fd/" + std::to_string(ends_[0]); }

  private:
    int ends_[2] = {-1, -1};
};

TEST(SourceFile, TellsWhyASourceCannotBeRead) {
    const TemporaryFolder folder;
    EXPECT_FALSE(whyUnreadable(folder.write("a.gpx", "")));
    EXPECT_FALSE(whyUnreadable("/dev/null"));
    EXPECT_EQ(whyUnreadable(folder.file("b.gpx")), std::errc::no_such_file_or_directory);
    EXPECT_EQ(whyUnreadable(folder.path().string()), std::errc::is_a_directory);
    EXPECT_EQ(whyUnreadable(""), std::errc::no_such_file_or_directory);
}

TEST(SourceFile, ARegularFileIsItsOwnRereadableSource) {
    const TemporaryFolder folder;
    RereadableSource source(folder.write("a.gpx", "content"));
    EXPECT_FALSE(source.prepare());
    EXPECT_EQ(source.path(), folder.file("a.gpx"));
}

TEST(SourceFile, APipeCanBeReadAgainAndAgain) {
    const FilledPipe pipe("content");
    RereadableSource source(pipe.path());
    EXPECT_FALSE(source.prepare());
    EXPECT_THAT(source.path(), StartsWith("/dev/fd/"));
    EXPECT_EQ(readFile(source.path()), "content");
    EXPECT_EQ(readFile(source.path()), "content");
}

TEST(SourceFile, TheCopyHasNoName) {
    const TemporaryFolder folder;
    ::setenv("TMPDIR", folder.path().c_str(), 1);
    const FilledPipe pipe("content");
    RereadableSource source(pipe.path());
    EXPECT_FALSE(source.prepare());
    ::unsetenv("TMPDIR");
    EXPECT_TRUE(fs::is_empty(folder.path()));
    EXPECT_THAT(fs::read_symlink(source.path()).string(), StartsWith(folder.path().string()));
}

TEST(SourceFile, AFolderThatCannotHoldTheCopyIsAFailureToWrite) {
    const TemporaryFolder folder;
    ::setenv("TMPDIR", folder.file("missing").c_str(), 1);
    const FilledPipe pipe("content");
    RereadableSource source(pipe.path());
    const auto failure = source.prepare();
    ::unsetenv("TMPDIR");
    EXPECT_FALSE(failure.reading);
    EXPECT_EQ(failure.writing, std::errc::no_such_file_or_directory);
    EXPECT_EQ(failure.folder, folder.file("missing"));
}

TEST(SourceFile, ASourceThatVanishedIsAFailureToRead) {
    RereadableSource source("/nonexistent/a.gpx");
    EXPECT_EQ(source.prepare().reading, std::errc::no_such_file_or_directory);
}

} // namespace
} // namespace pelluvia::host
