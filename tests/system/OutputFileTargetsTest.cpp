// SPDX-License-Identifier: MIT

// What an output file can be made on beside a path, and when its content is safe.

#include <Pelluvia/system/OutputFile.h>

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <tests/support/TemporaryFolder.h>
#include <unistd.h>

namespace pelluvia {
namespace {

using testing::readFile;
using testing::TemporaryFolder;

bool isOpen(int descriptor) {
    return ::fcntl(descriptor, F_GETFD) >= 0;
}

int openForWriting(const std::string &path) {
    const int descriptor = ::open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    EXPECT_GE(descriptor, 0);
    return descriptor;
}

TEST(OutputFileTargets, ABorrowedDescriptorIsWrittenAtItsPositionAndStaysOpen) {
    const TemporaryFolder folder;
    const int descriptor = openForWriting(folder.file("a"));
    ASSERT_EQ(::write(descriptor, "first ", 6), 6);
    std::error_code error = std::make_error_code(std::errc::io_error);
    const auto file = OutputFile::onBorrowedDescriptor(descriptor, error);
    ASSERT_NE(file, nullptr);
    EXPECT_FALSE(error);
    file->write("second ");
    EXPECT_FALSE(file->close());
    ASSERT_TRUE(isOpen(descriptor));
    ASSERT_EQ(::write(descriptor, "third", 5), 5);
    ::close(descriptor);
    EXPECT_EQ(readFile(folder.file("a")), "first second third");
}

TEST(OutputFileTargets, AnOwnedDescriptorIsClosed) {
    const TemporaryFolder folder;
    const int descriptor = openForWriting(folder.file("a"));
    std::error_code error;
    auto file = OutputFile::onOwnedDescriptor(descriptor, error);
    ASSERT_NE(file, nullptr);
    file->write("all of it");
    file.reset();
    EXPECT_FALSE(isOpen(descriptor));
    EXPECT_EQ(readFile(folder.file("a")), "all of it");
}

TEST(OutputFileTargets, ADescriptorThatCannotBeWrittenIsRefusedAndLeftToTheHost) {
    const TemporaryFolder folder;
    const std::string path = folder.write("a", "content");
    const int readOnly = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_GE(readOnly, 0);
    for (const int descriptor : {readOnly, -1, 1 << 30}) {
        std::error_code error;
        EXPECT_EQ(OutputFile::onBorrowedDescriptor(descriptor, error), nullptr);
        EXPECT_EQ(error, std::errc::bad_file_descriptor);
        error.clear();
        EXPECT_EQ(OutputFile::onOwnedDescriptor(descriptor, error), nullptr);
        EXPECT_EQ(error, std::errc::bad_file_descriptor);
    }
    EXPECT_TRUE(isOpen(readOnly));
    ::close(readOnly);
}

TEST(OutputFileTargets, MemoryGetsTheContentBehindWhatIsThere) {
    std::string text = "before ";
    const auto file = OutputFile::inMemory(text);
    file->write("after ");
    EXPECT_FALSE(file->flush());
    EXPECT_EQ(text, "before after ");
    const std::string large(1'000'000, '#'); // several times the buffer
    file->write(large);
    EXPECT_FALSE(file->sync());
    EXPECT_FALSE(file->close());
    EXPECT_TRUE(text == "before after " + large);
}

TEST(OutputFileTargets, MemoryIsLeftAloneAfterClosing) {
    std::string text;
    const auto file = OutputFile::inMemory(text);
    file->write("a");
    EXPECT_FALSE(file->close());
    text = "the host's again";
    file->write("b");
    EXPECT_FALSE(file->flush());
    EXPECT_FALSE(file->sync());
    EXPECT_FALSE(file->close());
    EXPECT_EQ(text, "the host's again");
}

TEST(OutputFileTargets, FlushAndSyncTellTheFirstFailure) {
    if (!std::filesystem::exists("/dev/full")) {
        GTEST_SKIP() << "the system has no /dev/full";
    }
    for (const bool syncs : {false, true}) {
        std::error_code error;
        const auto file = OutputFile::open("/dev/full", error);
        ASSERT_NE(file, nullptr);
        file->write("a");
        EXPECT_EQ(syncs ? file->sync() : file->flush(), std::errc::no_space_on_device);
        EXPECT_EQ(syncs ? file->flush() : file->sync(), std::errc::no_space_on_device) << "still";
    }
}

TEST(OutputFileTargets, SyncWritesWhatIsBuffered) {
    const TemporaryFolder folder;
    std::error_code error;
    const auto file = OutputFile::open(folder.file("a"), error);
    ASSERT_NE(file, nullptr);
    file->write("safe");
    EXPECT_FALSE(file->sync());
    EXPECT_EQ(readFile(folder.file("a")), "safe");
}

TEST(OutputFileTargets, WhereNoDiskIsBehindSyncIsAFlush) {
    std::array<int, 2> ends = {};
    ASSERT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
    std::error_code error;
    const auto file = OutputFile::onOwnedDescriptor(ends[1], error);
    ASSERT_NE(file, nullptr);
    file->write("ab");
    EXPECT_FALSE(file->sync());
    std::array<char, 8> received = {};
    EXPECT_EQ(::read(ends[0], received.data(), received.size()), 2);
    EXPECT_FALSE(file->close());
    ::close(ends[0]);
}

} // namespace
} // namespace pelluvia
