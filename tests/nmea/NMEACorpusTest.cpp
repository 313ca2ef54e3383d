// SPDX-License-Identifier: MIT

#include <Pelluvia/nmea/NMEAUtils.h>

#include <tests/support/LogCapture.h>
#include <tests/support/TemporaryFolder.h>

#include <filesystem>
#include <gtest/gtest.h>
#include <ostream>
#include <regex>
#include <sstream>
#include <string>

namespace pelluvia {
namespace {

/// What the lines of a log are.
struct Tally {
    int checked = 0;   ///< with a checksum, and the right one
    int unchecked = 0; ///< taken without one
    int rejected = 0;
    std::size_t tooLong = 0;

    friend bool operator==(const Tally &, const Tally &) = default;
    friend std::ostream &operator<<(std::ostream &stream, const Tally &tally) {
        return stream << tally.checked << " checked, " << tally.unchecked << " unchecked, "
                      << tally.rejected << " rejected, " << tally.tooLong << " too long";
    }
};

Tally tally(const std::string &log) {
    const testing::LogCapture capture;
    Tally found;
    std::istringstream lines(log);
    for (std::string line; std::getline(lines, line);) {
        const auto body = NMEAUtils::checkAndTrimNMEASentence(line);
        if (!body) {
            ++found.rejected;
        } else if (line.find("$" + *body + "*") != std::string::npos) {
            ++found.checked;
        } else {
            ++found.unchecked;
        }
    }
    found.tooLong = capture.lines.size();
    return found;
}

/// The same, said differently: good for logs whose lines are ASCII or fail for another reason.
Tally tallyByPattern(const std::string &log) {
    static const std::regex withChecksum(R"(\s*\$([\0-\x7F]*)\*([0-9A-Fa-f]{2})\s*)");
    static const std::regex without(R"(\s*\$[^]*[^*\s][^][^\s]\s*)");
    Tally found;
    std::istringstream lines(log);
    for (std::string line; std::getline(lines, line);) {
        found.tooLong += line.size() > 82 ? 1U : 0U;
        std::smatch match;
        if (std::regex_match(line, match, withChecksum)) {
            int checksum = 0;
            for (const char c : match.str(1)) {
                checksum ^= c;
            }
            ++(checksum == std::stoi(match.str(2), nullptr, 16) ? found.checked : found.rejected);
        } else {
            ++(std::regex_match(line, without) ? found.unchecked : found.rejected);
        }
    }
    return found;
}

TEST(NMEACorpus, EveryLogHasTheSentencesThatAPatternFinds) {
    const auto folder = testing::corpusFolder() / "nmea";
    if (!std::filesystem::is_directory(folder)) {
        GTEST_SKIP() << "no receiver logs here";
    }
    int checked = 0;
    for (const auto &entry : std::filesystem::directory_iterator(folder)) {
        const std::string log = testing::readFile(entry.path());
        const Tally found = tally(log);
        EXPECT_EQ(found, tallyByPattern(log)) << entry.path();
        checked += found.checked;
    }
    EXPECT_GT(checked, 0);
}

} // namespace
} // namespace pelluvia
