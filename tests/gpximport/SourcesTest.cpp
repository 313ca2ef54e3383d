// SPDX-License-Identifier: MIT

#include <Pelluvia/gpximport/GPXFileImporter.h>

#include <Pelluvia/values/CocoaErrors.h>
#include <Pelluvia/xml/XMLParser.h>
#include <tests/gpximport/Importing.h>
#include <tests/support/OpenFile.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <string>
#include <unistd.h>
#include <vector>

/// \file
/// What an import can read, how far it says it is, and what it tells of a failure.

namespace pelluvia {
namespace {

using testing::gpx;
using testing::Importing;
using ::testing::IsEmpty;
using testing::LogCapture;
using testing::TemporaryFolder;

const std::string everything =
    gpx("<rte><rtept lat='1' lon='1'/></rte><wpt lat='2' lon='1'><name>A</name></wpt>"
        "<trk><trkseg><trkpt lat='3' lon='1'/></trkseg></trk>");

std::string textOf(const std::optional<GPXImportFault> &fault) {
    return !fault ? "none"
                  : fault->path + ":" + std::to_string(fault->line) + ":" +
                        std::to_string(fault->column) + ": " + fault->message;
}

TEST(Sources, ADocumentInMemoryIsImportedAsAFileIs) {
    Importing fromFile;
    const auto expected = fromFile.document(everything).calls;
    Importing importing;
    EXPECT_EQ(importing.importer->processData(everything), nullptr);
    EXPECT_EQ(importing.spy->calls, expected);
    EXPECT_EQ(importing.importer->fileURL(), std::nullopt);
}

TEST(Sources, ADescriptorIsReadFromWhereItStandsAndStandsThereAfterwards) {
    Importing fromFile;
    const auto expected = fromFile.document(everything).calls;
    const TemporaryFolder folder;
    const testing::OpenFile file(folder.write("a.gpx", "skipped" + everything));
    ASSERT_EQ(::lseek(file.descriptor(), 7, SEEK_SET), 7);
    Importing importing;
    for (int round = 0; round < 2; ++round) {
        importing.spy->calls.clear();
        EXPECT_EQ(importing.importer->processDescriptor(file.descriptor()), nullptr);
        EXPECT_EQ(importing.spy->calls, expected);
        EXPECT_EQ(::lseek(file.descriptor(), 0, SEEK_CUR), 7);
    }
}

TEST(Sources, ADescriptorThatCannotBeReadAgainIsRefusedBeforeAnyCall) {
    int pipe[2] = {-1, -1};
    ASSERT_EQ(::pipe(pipe), 0);
    for (const int descriptor : {pipe[0], -1}) {
        Importing importing;
        const ErrorPtr error = importing.importer->processDescriptor(descriptor);
        ASSERT_NE(error, nullptr);
        EXPECT_EQ(error->domain(), NSCocoaErrorDomain);
        EXPECT_EQ(error->code(), NSFileReadUnknownError);
        EXPECT_THAT(importing.spy->calls, IsEmpty());
        EXPECT_EQ(textOf(importing.importer->fault()),
                  ":0:0: The descriptor is not that of a file, which could be read several times");
    }
    ::close(pipe[0]);
    ::close(pipe[1]);
}

TEST(Sources, TheFileOfAnImporterIsReadAgainAfterADocument) {
    const TemporaryFolder folder;
    Importing importing(testing::onlyWaypoints);
    importing.importer->setFileURL(
        URL::fileURLWithPath(folder.write("a.gpx", gpx("<wpt lat='7' lon='7'/>"))));
    EXPECT_EQ(importing.importer->processData(everything), nullptr);
    importing.spy->calls.clear();
    EXPECT_EQ(importing.importer->processURL(std::nullopt), nullptr);
    EXPECT_EQ(importing.spy->callsOf("wayPoint"),
              std::vector<std::string>{"wayPoint: (7, 7, 0, 0, 0) extra: {}"});
}

TEST(Sources, APathWithAZeroByteIsRefused) {
    const TemporaryFolder folder;
    const std::string path = folder.write("a.gpx", everything);
    Importing importing;
    const LogCapture log;
    const ErrorPtr error = importing.importer->processFile(path + '\0' + ".gpx");
    ASSERT_NE(error, nullptr);
    EXPECT_EQ(error->code(), xmlErrors::unreadable);
    EXPECT_THAT(importing.spy->callsOf("routePoint"), IsEmpty());
}

TEST(Sources, ProgressRunsThroughAllPasses) {
    std::string points;
    for (int i = 0; i < 20'000; ++i) {
        points += "<trkpt lat='47.5' lon='" + std::to_string(i) + "'/>\n";
    }
    const std::string document =
        gpx("<rte><rtept lat='1' lon='1'/></rte><wpt lat='2' lon='1'/><trk><trkseg>" + points +
            "</trkseg></trk>");
    const std::uint64_t size = document.size();
    const TemporaryFolder folder;
    const std::string path = folder.write("a.gpx", document);
    Importing importing;
    std::vector<std::uint64_t> positions;
    std::vector<std::string> calls;
    importing.spy->onCall = [&](const std::string &line) {
        const ReadingProgress progress = importing.importer->readingProgress();
        EXPECT_EQ(progress.size, 4 * size) << line;
        positions.push_back(progress.position);
        calls.push_back(line);
    };
    EXPECT_EQ(importing.importer->readingProgress().position, 0U);
    EXPECT_EQ(importing.importer->readingProgress().size, std::nullopt);
    EXPECT_EQ(importing.importer->processFile(path), nullptr);
    EXPECT_TRUE(std::is_sorted(positions.begin(), positions.end()));
    for (std::size_t i = 0; i < calls.size(); ++i) {
        if (calls[i].starts_with("startTransfer: nil kind: 2")) {
            EXPECT_EQ(positions[i], size);
        } else if (calls[i].starts_with("endTransfer: 3")) {
            EXPECT_EQ(positions[i], 3 * size);
        }
    }
    // In the middle of the last pass, as near as the parser's buffers let it be.
    EXPECT_NEAR(static_cast<double>(positions[positions.size() / 2]),
                3.5 * static_cast<double>(size), 200'000);
    EXPECT_EQ(importing.importer->readingProgress().position, 4 * size);

    EXPECT_EQ(importing.importer->processData(document), nullptr);
    EXPECT_EQ(importing.importer->readingProgress().position, 4 * size);
}

TEST(Sources, ProgressCountsOnlyThePassesThatRun) {
    Importing importing(testing::onlyWaypoints);
    EXPECT_EQ(importing.importer->processData(everything), nullptr);
    EXPECT_EQ(importing.importer->readingProgress().position, 2 * everything.size());
    EXPECT_EQ(importing.importer->readingProgress().size, 2 * everything.size());
}

TEST(Sources, AFaultTellsTheWholeStory) {
    const TemporaryFolder folder;
    const LogCapture log;
    Importing importing;
    EXPECT_EQ(textOf(importing.importer->fault()), "none");

    const std::string nested = folder.write("nested.gpx", gpx("\n <wpt/>\n  <trkpt lat='1'/>\n"));
    EXPECT_NE(importing.importer->processFile(nested), nullptr);
    const auto fault = importing.importer->fault();
    ASSERT_TRUE(fault);
    EXPECT_EQ(fault->path, nested);
    EXPECT_EQ(fault->message, "trkpt found while not in track segment");
    EXPECT_EQ(fault->line, 3);
    EXPECT_GT(fault->column, 0);

    const std::string missing = folder.file("missing.gpx");
    const ErrorPtr error = importing.importer->processFile(missing);
    ASSERT_NE(error, nullptr);
    EXPECT_EQ(textOf(importing.importer->fault()),
              missing + ":0:0: " + error->localizedDescription());

    EXPECT_NE(importing.importer->processData("<gpx>\n</wrong>"), nullptr);
    EXPECT_EQ(importing.importer->fault()->path, "");
    EXPECT_EQ(importing.importer->fault()->line, 2);

    EXPECT_EQ(importing.importer->processData(gpx("")), nullptr);
    EXPECT_EQ(textOf(importing.importer->fault()), "none");

    const auto unheard = GPXFileImporter::initWithReceiver(nullptr);
    EXPECT_NE(unheard->processData(everything), nullptr);
    EXPECT_EQ(textOf(unheard->fault()), ":0:0: There is no receiver");
}

} // namespace
} // namespace pelluvia
