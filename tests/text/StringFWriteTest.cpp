// SPDX-License-Identifier: MIT

#include <Pelluvia/text/Companion.h>

#include <Pelluvia/system/OutputFile.h>

#include <gtest/gtest.h>
#include <tests/support/TemporaryFolder.h>

namespace pelluvia {
namespace {

TEST(StringFWrite, WritesTheCharactersUnchanged) {
    const testing::TemporaryFolder folder;
    const std::string path = folder.file("text");
    std::error_code error;
    const std::unique_ptr<OutputFile> file = OutputFile::open(path, error);
    ASSERT_NE(file, nullptr);

    SkerryCFStringFWrite(*file, "<a & %d>\n");
    SkerryCFStringFWrite(*file, "");
    SkerryCFStringFWrite(*file, std::string_view("x\0y", 3));
    ASSERT_FALSE(file->close());

    EXPECT_EQ(testing::readFile(path), std::string("<a & %d>\nx\0y", 12));
}

} // namespace
} // namespace pelluvia
