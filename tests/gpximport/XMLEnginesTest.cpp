#include <tests/gpximport/Importing.h>

#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <tests/support/Damage.h>
#include <tests/support/GPXFiles.h>
#include <tests/support/TemporaryFolder.h>
#include <vector>

/// \file
/// Imports by the scanner are imports by the XML library.

namespace pelluvia {
namespace {

using testing::Imported;
using testing::Importing;

/// With the texts of the error, which `textOf` leaves out.
std::string resultOf(const Imported &imported) {
    return imported.result == nullptr
               ? "nil"
               : testing::textOf(imported.result) + " " + imported.result->localizedDescription();
}

class XMLEngines : public ::testing::Test {
  protected:
    void TearDown() override { ::unsetenv("PELLUVIA_XML_ENGINE"); }

    static Imported importBy(const char *engine, const std::string &path) {
        ::setenv("PELLUVIA_XML_ENGINE", engine, 1);
        return Importing().file(path);
    }

    /// Whether the calls, the result and the log are the same; tells what is not.
    static bool agreeOn(const std::string &path) {
        const Imported one = importBy("automatic", path);
        const Imported other = importBy("libxml2", path);
        EXPECT_EQ(one.calls, other.calls);
        EXPECT_EQ(resultOf(one), resultOf(other));
        EXPECT_EQ(one.log, other.log);
        return one.calls == other.calls && resultOf(one) == resultOf(other) && one.log == other.log;
    }
};

TEST_F(XMLEngines, ImportAllFilesAlike) {
    for (const auto &file : testing::gpxFiles()) {
        EXPECT_TRUE(agreeOn(file.string())) << file;
    }
}

TEST_F(XMLEngines, ImportDamagedFilesAlike) {
    std::vector<std::string> texts;
    for (const auto &file : testing::gpxFiles()) {
        texts.push_back(testing::readFile(file));
    }
    const testing::TemporaryFolder folder;
    testing::Damage damage(2);
    for (std::size_t i = 0; i < testing::damagedDocuments; ++i) {
        const std::string text = damage.apply(damage.cut(texts[i % texts.size()], 1500));
        const std::string path = folder.write("damaged.gpx", text);
        ASSERT_TRUE(agreeOn(path)) << text;
        std::filesystem::remove(path); // some file systems wait when a file is written over
    }
}

} // namespace
} // namespace pelluvia
