// SPDX-License-Identifier: MIT

#include <Pelluvia/storage/internal/BookmarkRecord.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

#include <tests/storage/BookmarkTexts.h>

namespace pelluvia::storage {
namespace {

const BookmarkRecord example{
    .path = "/home/me/GPS", .identity = {.device = 64'769, .inode = 1'234}, .document = ""};

std::string_view complaintAbout(const Data &data) {
    BookmarkRecord record;
    return decode(data, record);
}

TEST(BookmarkRecord, SaysWhatItIs) {
    EXPECT_EQ(testing::textOf(encoded(example)),
              "Pelluvia bookmark 1\n"
              "folder file:///home/me/GPS\n"
              "device 64769\n"
              "inode 1234\n"
              "sum 500b4e5b9d998146088ed605f5a5b645b69fef86adfd717db2b21be643a780d1\n");
}

TEST(BookmarkRecord, SaysWhenTheFolderWasMade) {
    BookmarkRecord record = example;
    record.identity.born = "1700000000.123456789";
    EXPECT_THAT(testing::textOf(encoded(record)),
                ::testing::HasSubstr("\ninode 1234\nborn 1700000000.123456789\nsum "));
}

TEST(BookmarkRecord, IsReadBackAsItWas) {
    std::string allBytes = "/";
    for (int byte = 1; byte < 256; ++byte) {
        allBytes += static_cast<char>(byte);
    }
    for (const BookmarkRecord &record :
         {example, BookmarkRecord{"/run/user/1000/doc/3f0a/GPS", {~0ULL, ~0ULL}, "3f0a"},
          BookmarkRecord{allBytes, {0, 0}, "with space"},
          BookmarkRecord{"/born", {1, 2, "1700000000.5"}, "3f0a"},
          BookmarkRecord{"/" + std::string(100'000, 'x'), {1, 2}, ""}}) {
        BookmarkRecord again;
        EXPECT_EQ(decode(encoded(record), again), "");
        EXPECT_EQ(again, record);
    }
}

TEST(BookmarkRecord, NoDataAreNoBookmark) {
    EXPECT_EQ(complaintAbout({}), "There is no bookmark");
}

TEST(BookmarkRecord, EveryTruncationIsFound) {
    const Data whole = encoded({"/home/me/GPS", {1, 2}, "3f0a"});
    for (std::size_t size = 1; size < whole.size(); ++size) {
        const auto end = whole.begin() + static_cast<std::ptrdiff_t>(size);
        EXPECT_EQ(complaintAbout(Data(whole.begin(), end)), "The bookmark is cut off") << size;
    }
}

TEST(BookmarkRecord, EveryChangedByteIsFound) {
    const Data whole = encoded({"/home/me/GPS", {1, 2}, "3f0a"});
    for (std::size_t at = 0; at < whole.size(); ++at) {
        for (const int change : {1, 0x20, 0x80}) {
            Data changed = whole;
            changed[at] = static_cast<std::uint8_t>(changed[at] ^ change);
            EXPECT_NE(complaintAbout(changed), "") << at;
        }
    }
}

TEST(BookmarkRecord, AnotherVersionIsNotGuessedAt) {
    const std::string text = testing::textOf(encoded(example));
    for (const char *version : {"2", "10", "0", "", "1 ", "one"}) {
        const std::string other =
            "Pelluvia bookmark " + std::string(version) + text.substr(text.find('\n'));
        EXPECT_EQ(complaintAbout(testing::dataOf(other)),
                  "The bookmark is of a version that is not known")
            << version;
    }
}

TEST(BookmarkRecord, OtherDataAreNoBookmark) {
    for (const char *text :
         {"\n", "book\x01\x02", "<?xml version=\"1.0\"?>", "pelluvia bookmark 1\n"}) {
        EXPECT_EQ(complaintAbout(testing::dataOf(text)), "This is not a bookmark") << text;
    }
}

TEST(BookmarkRecord, FieldsThatAreNotAsTheyShouldBeAreDamage) {
    const std::string good = "folder file:///a\ndevice 1\ninode 2\n";
    ASSERT_EQ(complaintAbout(testing::bookmarkWith(good)), "");
    for (const std::string &fields :
         {std::string(), good + "more 1\n", good + good, good + "document \n", good + "born \n",
          good + "document x\nborn 1.2\n", std::string("folder /a\ndevice 1\ninode 2\n"),
          std::string("folder file://elsewhere/a\ndevice 1\ninode 2\n"),
          std::string("folder file:///a%00b\ndevice 1\ninode 2\n"),
          std::string("folder file:///a%2Fb\ndevice 1\ninode 2\n"),
          std::string("folder http://a/b\ndevice 1\ninode 2\n"),
          std::string("folder file:///a\ndevice -1\ninode 2\n"),
          std::string("folder file:///a\ndevice 1\ninode 99999999999999999999\n"),
          std::string("folder file:///a\ninode 2\ndevice 1\n"),
          std::string("device 1\ninode 2\n")}) {
        EXPECT_EQ(complaintAbout(testing::bookmarkWith(fields)), "The bookmark is damaged")
            << fields;
    }
}

} // namespace
} // namespace pelluvia::storage
