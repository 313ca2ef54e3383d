#include <Pelluvia/storage/internal/DefaultsText.h>

#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <vector>

namespace pelluvia::storage {
namespace {

std::string textWith(std::string_view key, const DefaultsObject &object) {
    DefaultsText entries;
    entries.set(key, object);
    return entries.text();
}

DefaultsObject roundTrip(const DefaultsObject &object) {
    const auto again = DefaultsText::parsed(textWith("key", object));
    return again ? again->find("key").value_or(DefaultsObject("nothing")) : DefaultsObject("bad");
}

TEST(DefaultsText, IsAKeyFileWithTheTypeBeforeEachValue) {
    EXPECT_EQ(textWith("A:/b c", Data{'a', 'b', 'c'}), "[Defaults]\nA:/b%20c=data:YWJj\n");
    EXPECT_EQ(textWith("t", std::string("a=b\n\xC3\xA4")), "[Defaults]\nt=string:a%3Db%0A%C3%A4\n");
    EXPECT_EQ(textWith("i", std::int64_t{-42}), "[Defaults]\ni=integer:-42\n");
    EXPECT_EQ(textWith("r", 0.1), "[Defaults]\nr=real:0.1\n");
    EXPECT_EQ(textWith("", std::int64_t{1}), "[Defaults]\n%=integer:1\n");
}

TEST(DefaultsText, GivesEveryValueBack) {
    std::string allBytes;
    for (int byte = 0; byte < 256; ++byte) {
        allBytes += static_cast<char>(byte);
    }
    for (const DefaultsObject &each : std::vector<DefaultsObject>{
             Data(), Data(allBytes.begin(), allBytes.end()), std::string(), allBytes,
             std::string(" both ends "), std::numeric_limits<std::int64_t>::min(),
             std::numeric_limits<std::int64_t>::max(), 0.0, -1.5e-300,
             std::numeric_limits<double>::infinity()}) {
        EXPECT_EQ(roundTrip(each), each);
    }
    EXPECT_TRUE(std::isnan(std::get<double>(roundTrip(std::numeric_limits<double>::quiet_NaN()))));
}

TEST(DefaultsText, KeepsEveryKeyApart) {
    const std::vector<std::string> keys = {"",
                                           " ",
                                           "%",
                                           "%20",
                                           "a=b",
                                           "a%3Db",
                                           "[a]",
                                           "a[de]",
                                           "a[fr]",
                                           "a",
                                           "a ",
                                           " a",
                                           "a\nb",
                                           "a\r\nb",
                                           "#a",
                                           std::string(1, '\0'),
                                           "\xFF\xFE",
                                           "\xC3\xA4",
                                           "a:b",
                                           "Defaults",
                                           "[Defaults]",
                                           std::string(100'000, '/'),
                                           std::string(100'000, '=')};
    DefaultsText entries;
    for (std::size_t at = 0; at < keys.size(); ++at) {
        entries.set(keys[at], static_cast<std::int64_t>(at));
    }
    const auto again = DefaultsText::parsed(entries.text());
    ASSERT_TRUE(again);
    for (std::size_t at = 0; at < keys.size(); ++at) {
        EXPECT_EQ(again->find(keys[at]), DefaultsObject(static_cast<std::int64_t>(at)));
    }
}

TEST(DefaultsText, ReplacesAndRemoves) {
    DefaultsText entries;
    entries.set("a", std::int64_t{1});
    entries.set("b", std::int64_t{2});
    entries.set("a", std::string("x"));
    entries.remove("b");
    entries.remove("never there");
    EXPECT_EQ(entries.text(), "[Defaults]\na=string:x\n");
    EXPECT_EQ(entries.find("b"), std::nullopt);
}

TEST(DefaultsText, KeepsWhatTheUserHasAddedByHand) {
    auto entries =
        DefaultsText::parsed("# mine\n[Defaults]\na=integer:1\n\n# more\n[Other]\nb=c\n");
    ASSERT_TRUE(entries);
    entries->set("a", std::int64_t{2});
    const std::string text = entries->text();
    EXPECT_EQ(text, "# mine\n\n[Defaults]\na=integer:2\n\n# more\n\n[Other]\nb=c\n");
    const auto again = DefaultsText::parsed(text);
    ASSERT_TRUE(again);
    EXPECT_EQ(again->text(), text);
    const std::string translated = "[Defaults]\na=integer:1\n\n[Other]\nb[xx]=c\n";
    EXPECT_EQ(DefaultsText::parsed(translated)->text(), translated);
}

TEST(DefaultsText, AValueThatCannotBeUnderstoodIsNotGiven) {
    for (const char *value : {"", "1", "integer:", "integer:1x", "integer:99999999999999999999",
                              "real:", "real:abc", "string:%4", "string:%zz", "data:YWJ",
                              "data:Y W", "data:!!!!", "blob:YWJj", "INTEGER:1"}) {
        const auto entries = DefaultsText::parsed("[Defaults]\na=" + std::string(value) + "\n");
        ASSERT_TRUE(entries);
        EXPECT_EQ(entries->find("a"), std::nullopt) << value;
    }
}

TEST(DefaultsText, WhatIsNoKeyFileOfOursIsRefused) {
    for (const std::string_view text :
         {std::string_view("garbage"), std::string_view("a=b\n"),
          std::string_view("[Other]\na=b\n"), std::string_view("[Defaults\n"),
          std::string_view("\0\0\0\0", 4), std::string_view("[Defaults]\na=b\0c\n", 17),
          std::string_view("[Defaults]\nno line\n"), std::string_view("\n"),
          std::string_view("\xFF\xFE[Defaults]\n")}) {
        EXPECT_FALSE(DefaultsText::parsed(text)) << text;
    }
    EXPECT_TRUE(DefaultsText::parsed(""));
}

} // namespace
} // namespace pelluvia::storage
