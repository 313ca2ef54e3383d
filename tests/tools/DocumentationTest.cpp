#include "CallLogs.h"
#include "Pelluvia.h"

#include <gtest/gtest.h>
#include <string>

namespace pelluvia {
namespace {

std::string documentation() {
    return testing::readFile(std::string(PELLUVIA_DOCS) + "/call-log.md");
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

} // namespace
} // namespace pelluvia
