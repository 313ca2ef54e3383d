// SPDX-License-Identifier: MIT

#include <tests/gpximport/Importing.h>
#include <tests/support/TemporaryFolder.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <vector>

/// \file
/// Every `tests/fixtures/gpximport/*.gpx` is imported and its calls compared, byte for byte, with
/// the `.calls.txt` beside it. With PELLUVIA_WRITE_GOLDEN=1 in the environment the expected texts
/// are written instead; look at every changed line before you commit it.

namespace pelluvia {
namespace {

namespace fs = std::filesystem;
using testing::Imported;
using testing::Importing;

std::vector<std::string> fixtureNames() {
    std::vector<std::string> names;
    for (const auto &entry : fs::directory_iterator(testing::fixture("gpximport"))) {
        if (entry.path().extension() == ".gpx") {
            names.push_back(entry.path().stem().string());
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::string textOfImport(const Imported &imported) {
    std::string text;
    for (const std::string &call : imported.calls) {
        text += call + "\n";
    }
    return text + "result: " + testing::textOf(imported.result) + "\n";
}

class GoldenCalls : public ::testing::TestWithParam<std::string> {};

TEST_P(GoldenCalls, AreTheExpectedOnes) {
    constexpr std::string_view hostOfTheFixtures = "www.quorvel.com";
    if (GetParam() == "gpxdata" && hostOfTheFixtures != PELLUVIA_GPXDATA_HOST) {
        GTEST_SKIP() << "built for the gpxdata namespace of another host";
    }
    const fs::path folder = testing::fixture("gpximport");
    const std::string calls =
        textOfImport(Importing().file((folder / (GetParam() + ".gpx")).string()));
    const fs::path golden = folder / (GetParam() + ".calls.txt");
    // Read in a single-threaded test program.
    if (std::getenv("PELLUVIA_WRITE_GOLDEN") != nullptr) { // NOLINT(concurrency-mt-unsafe)
        testing::writeFile(golden, calls);
        return;
    }
    EXPECT_EQ(calls, testing::readFile(golden));
}

std::string testName(const ::testing::TestParamInfo<std::string> &parameter) {
    std::string name = parameter.param;
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
}

INSTANTIATE_TEST_SUITE_P(Fixtures, GoldenCalls, ::testing::ValuesIn(fixtureNames()), testName);

} // namespace
} // namespace pelluvia
