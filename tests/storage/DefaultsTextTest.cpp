// SPDX-License-Identifier: MIT

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
    return DefaultsText::parsed(textWith("key", object))
        .find("key")
        .value_or(DefaultsObject("nothing"));
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
    const DefaultsText again = DefaultsText::parsed(entries.text());
    EXPECT_EQ(again.badLineCount(), 0U);
    for (std::size_t at = 0; at < keys.size(); ++at) {
        EXPECT_EQ(again.find(keys[at]), DefaultsObject(static_cast<std::int64_t>(at)));
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
    const std::string text = "# mine\n[Defaults]\r\n ; my own\n\na = integer:1 \nb=date:2024\n\n"
                             "[Other]\nanything at all\n[Defaults]\n# more\nc=real:1\n";
    DefaultsText entries = DefaultsText::parsed(text);
    EXPECT_EQ(entries.badLineCount(), 0U);
    EXPECT_EQ(entries.text(), text);
    EXPECT_EQ(entries.find("a"), DefaultsObject(std::int64_t{1}));
    EXPECT_EQ(entries.find("c"), DefaultsObject(1.0));
    entries.set("a", std::int64_t{2});
    entries.set("d", std::int64_t{3});
    EXPECT_EQ(entries.text(),
              "# mine\n[Defaults]\r\n ; my own\n\na=integer:2\nb=date:2024\n\n"
              "[Other]\nanything at all\n[Defaults]\n# more\nc=real:1\nd=integer:3\n");
}

TEST(DefaultsText, PutsANewEntryUnderItsGroup) {
    const auto textAfterSetting = [](std::string_view text) {
        DefaultsText entries = DefaultsText::parsed(text);
        entries.set("a", std::int64_t{1});
        return entries.text();
    };
    EXPECT_EQ(textAfterSetting("[Defaults]\n# none\n[Other]\nb=c\n"),
              "[Defaults]\na=integer:1\n# none\n[Other]\nb=c\n");
    EXPECT_EQ(textAfterSetting("[Other]\nb=c"), "[Other]\nb=c\n[Defaults]\na=integer:1\n");
    EXPECT_EQ(textAfterSetting("# none\n"), "# none\n[Defaults]\na=integer:1\n");
}

TEST(DefaultsText, OfTwoLinesWithOneKeyTheLastCounts) {
    DefaultsText entries = DefaultsText::parsed("[Defaults]\na=integer:1\n%61=integer:2\n");
    EXPECT_EQ(entries.find("a"), DefaultsObject(std::int64_t{2}));
    entries.remove("a");
    EXPECT_EQ(entries.text(), "[Defaults]\n");
}

TEST(DefaultsText, PassesOverAByteOrderMark) {
    const DefaultsText entries = DefaultsText::parsed("\xEF\xBB\xBF[Defaults]\na=integer:1\n");
    EXPECT_EQ(entries.find("a"), DefaultsObject(std::int64_t{1}));
    EXPECT_EQ(entries.text(), "[Defaults]\na=integer:1\n");
}

TEST(DefaultsText, AValueOfAnUnknownTypeIsKeptAndNotGiven) {
    for (const char *value : {"", "1", "blob:YWJj", "INTEGER:1", ":", "data"}) {
        const std::string text = "[Defaults]\na=" + std::string(value) + "\n";
        const DefaultsText entries = DefaultsText::parsed(text);
        EXPECT_EQ(entries.find("a"), std::nullopt) << value;
        EXPECT_EQ(entries.badLineCount(), 0U) << value;
        EXPECT_EQ(entries.text(), text);
    }
}

TEST(DefaultsText, ALineThatCannotBeUnderstoodCostsNoOther) {
    for (const std::string &line : {std::string("no entry"),
                                    std::string("=integer:1"),
                                    std::string("%zz=integer:1"),
                                    std::string("a=integer:"),
                                    std::string("a=integer:1x"),
                                    std::string("a=integer:99999999999999999999"),
                                    std::string("a=real:"),
                                    std::string("a=real:abc"),
                                    std::string("a=string:%4"),
                                    std::string("a=string:%zz"),
                                    std::string("a=data:YWJ"),
                                    std::string("a=data:YWJ="),
                                    std::string("a=data:YW Jj"),
                                    std::string("a=data:!!!!"),
                                    std::string("a=data:YWJj===="),
                                    std::string("[Defaults"),
                                    std::string("[Def[aults]"),
                                    std::string("[Defaults] a"),
                                    std::string("["),
                                    std::string("a=b\0c", 5),
                                    std::string(1000, '\0')}) {
        const DefaultsText entries =
            DefaultsText::parsed("[Defaults]\nx=integer:1\n" + line + "\ny=integer:2\n" + line);
        EXPECT_EQ(entries.badLineCount(), 2U) << line;
        EXPECT_EQ(entries.firstBadLine(), 3U) << line;
        EXPECT_EQ(entries.text(), "[Defaults]\nx=integer:1\ny=integer:2\n") << line;
    }
}

TEST(DefaultsText, EntriesOutliveTheNameOfTheirGroup) {
    for (const char *start : {"", "[Defaul\n", "# mine\n", "[Other]\nb=c\n[efaults\n"}) {
        const DefaultsText entries =
            DefaultsText::parsed(std::string(start) + "a=integer:1\n[Other]\nb=c\n");
        EXPECT_EQ(entries.find("a"), DefaultsObject(std::int64_t{1})) << start;
        EXPECT_EQ(entries.find("b"), std::nullopt);
        EXPECT_THAT(entries.text(), ::testing::HasSubstr("[Defaults]\na=integer:1\n[Other]\n"));
    }
}

TEST(DefaultsText, NoTextHasNoEntriesAndNothingWrong) {
    for (const char *text : {"", "\n", "\n\n", "[Other]\na=b\n", "# nothing"}) {
        EXPECT_EQ(DefaultsText::parsed(text).badLineCount(), 0U);
        EXPECT_EQ(DefaultsText::parsed(text).find("a"), std::nullopt);
    }
}

} // namespace
} // namespace pelluvia::storage
