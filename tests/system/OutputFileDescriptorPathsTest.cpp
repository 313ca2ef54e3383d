// SPDX-License-Identifier: MIT

#include <Pelluvia/system/OutputFile.h>

#include <tests/support/TemporaryFolder.h>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>

namespace pelluvia {
namespace {

using testing::readFile;
using testing::TemporaryFolder;

std::string pathOf(int descriptor) {
    return "/dev/fd/" + std::to_string(descriptor);
}

TEST(OutputFileDescriptorPaths, NamesOfTheStandardStreamsAndOfDescriptors) {
    EXPECT_EQ(OutputFile::descriptorNamedBy("/dev/stdin"), 0);
    EXPECT_EQ(OutputFile::descriptorNamedBy("/dev/stdout"), 1);
    EXPECT_EQ(OutputFile::descriptorNamedBy("/dev/stderr"), 2);
    EXPECT_EQ(OutputFile::descriptorNamedBy("/dev/fd/17"), 17);
    EXPECT_EQ(OutputFile::descriptorNamedBy("/proc/self/fd/3"), 3);
}

TEST(OutputFileDescriptorPaths, OtherPathsNameNone) {
    for (const char *path : {"", "/dev/fd/", "/dev/fd/-1", "/dev/fd/1x", "/dev/fd/1/2", "dev/fd/1",
                             "/dev/fd/99999999999", "/dev/full", "/dev/stdout2"}) {
        EXPECT_EQ(OutputFile::descriptorNamedBy(path), std::nullopt) << path;
    }
}

TEST(OutputFileDescriptorPaths, AFileOpenedForAppendingIsAppendedTo) {
    const TemporaryFolder folder;
    const std::string path = folder.write("log", "before\n");
    const int descriptor = ::open(path.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC);
    ASSERT_GE(descriptor, 0);

    std::error_code error;
    const auto file = OutputFile::open(pathOf(descriptor), error);
    ASSERT_NE(file, nullptr) << error.message();
    file->write("after\n");
    EXPECT_FALSE(file->close());

    EXPECT_EQ(readFile(path), "before\nafter\n");
    EXPECT_EQ(::close(descriptor), 0) << "the host's descriptor stays open";
}

TEST(OutputFileDescriptorPaths, WritingGoesOnAtTheDescriptorsPosition) {
    const TemporaryFolder folder;
    const std::string path = folder.file("shared");
    const int descriptor = ::open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    ASSERT_EQ(::write(descriptor, "one ", 4), 4);
    {
        std::error_code error;
        const auto file = OutputFile::open(pathOf(descriptor), error);
        ASSERT_NE(file, nullptr) << error.message();
        file->write("two ");
    }
    ASSERT_EQ(::write(descriptor, "three", 5), 5);
    ::close(descriptor);

    EXPECT_EQ(readFile(path), "one two three");
}

TEST(OutputFileDescriptorPaths, AClosedDescriptorCannotBeOpened) {
    std::error_code error;
    EXPECT_EQ(OutputFile::open("/dev/fd/1000000", error), nullptr);
    EXPECT_TRUE(error);
}

} // namespace
} // namespace pelluvia
