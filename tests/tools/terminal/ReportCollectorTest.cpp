// SPDX-License-Identifier: MIT

#include <tools/pelluvia/terminal/ReportCollector.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

namespace pelluvia::host {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

Report described(const std::string &text, const std::string &advice = {}) {
    ErrorInfo info{{std::string(NSLocalizedDescriptionKey), text}};
    if (!advice.empty()) {
        info.emplace_back(std::string(NSLocalizedRecoverySuggestionErrorKey), advice);
    }
    return Error::make("domain", 3, std::move(info));
}

TEST(ReportCollector, KeepsTheTextsOfMessagesAndErrors) {
    ReportCollector collector;
    collector.take(Report("a message"));
    collector.take(described("Too many tracks", "Try a different file"));
    collector.take(described("It ends.", "Begin again"));
    collector.take(described("mismatched tag\n"));
    collector.take(Error::make("domain", 3));
    collector.take(Report());
    EXPECT_THAT(collector.collected().texts,
                ElementsAre("a message", "Too many tracks. Try a different file",
                            "It ends. Begin again", "mismatched tag", "domain error 3",
                            "no message"));
    EXPECT_THAT(collector.collected().texts, IsEmpty());
}

TEST(ReportCollector, KeepsAFewTextsOfBoundedLength) {
    ReportCollector collector;
    for (std::size_t i = 0; i < ReportCollector::most + 5; ++i) {
        collector.take(Report(std::string(100'000, 'x')));
    }
    const auto collected = collector.collected();
    EXPECT_THAT(collected.texts, SizeIs(ReportCollector::most));
    EXPECT_EQ(collected.texts[0].size(), ReportCollector::longestText + 3);
    EXPECT_EQ(collected.more, 5U);
}

} // namespace
} // namespace pelluvia::host
