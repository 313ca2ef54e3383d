// SPDX-License-Identifier: MIT

#include <tests/formats/calllog/CallLogs.h>
#include <tests/tools/Pelluvia.h>

#include <Pelluvia/xml/XMLParser.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

namespace pelluvia {
namespace {

std::string page(const std::string &name) {
    return testing::readFile(std::string(PELLUVIA_DOCS) + "/" + name);
}

std::string documentation() {
    return page("call-log.md");
}

/// A number as prose has it: 10,000,000.
std::string grouped(std::size_t number) {
    std::string text = std::to_string(number);
    for (std::size_t digits = 3; digits < text.size(); digits += 4) {
        text.insert(text.size() - digits, 1, ',');
    }
    return text;
}

TEST(Documentation, TheExampleOfTheCallLogIsARealRun) {
    const std::string page = documentation();
    const std::string beginning = "```jsonl\n";
    const std::size_t start = page.find(beginning);
    ASSERT_NE(start, std::string::npos);
    const std::string behind = page.substr(start + beginning.size());
    const std::string example = behind.substr(0, behind.find("```"));

    const testing::Outcome outcome =
        testing::pelluvia({"convert", "--to", "calls", testing::ride(), "-"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(example, outcome.output);
    EXPECT_EQ(testing::rewrittenLog(example), example);
}

TEST(Documentation, TheErrorLineIsARealOne) {
    const std::string page = documentation();
    const std::string beginning = "{\"call\":\"error:\"";
    const std::size_t start = page.find(beginning);
    ASSERT_NE(start, std::string::npos);
    const std::string line = page.substr(start, page.find('\n', start) - start + 1);
    EXPECT_EQ(testing::rewrittenLog(line), line);
}

TEST(Documentation, TheLimitsOfTheParserAreTheRealOnes) {
    const std::string security = page("security.md");
    for (const std::string &limit :
         {"`depth` | " + grouped(xmlLimits::depth),
          "`textSize` | " + grouped(xmlLimits::textSize) + " bytes",
          "`amplificationFactor` | " + grouped(xmlLimits::amplificationAllowance) + " bytes",
          "`declarationsSize` | " + grouped(xmlLimits::declarationsSize) + " bytes",
          "`attributes` | " + grouped(xmlLimits::attributes),
          "`names` | " + grouped(xmlLimits::names),
          "`externalEntitySize`, " + grouped(xmlLimits::externalEntitySize) + " bytes"}) {
        EXPECT_THAT(security, ::testing::HasSubstr(limit));
    }
    static_assert(xmlLimits::amplificationFactor == 5, "security.md says five times");
}

} // namespace
} // namespace pelluvia
