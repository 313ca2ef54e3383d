// SPDX-License-Identifier: MIT

// Where documents go: paths, descriptors, memory; and when what was written is there.

#include <Pelluvia/gpxwriter/GPXExporter.h>

#include <Pelluvia/model/TransferKind.h>
#include <tests/gpxwriter/WriterTest.h>

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <unistd.h>

namespace pelluvia {
namespace {

using testing::readFile;
using testing::TemporaryFolder;

/// What a document of one waypoint is at a path.
std::string waypointDocument() {
    const TemporaryFolder folder;
    const auto exporter = GPXExporter::initWithPath(folder.file("a.gpx"));
    exporter->wayPoint({1, 2, 0, 0, 0}, nullptr);
    exporter->gpsStateChange(gpsState::finished);
    EXPECT_FALSE(exporter->writeFailure());
    return readFile(folder.file("a.gpx"));
}

class Descriptor {
  public:
    Descriptor(const std::string &path, int flags)
        : number(::open(path.c_str(), flags | O_CLOEXEC, 0600)) {
        EXPECT_GE(number, 0);
    }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;
    ~Descriptor() { ::close(number); }
    const int number;
};

TEST(ExporterTargets, ADescriptorGetsTheWholeDocumentAndStaysOpen) {
    const TemporaryFolder folder;
    const Descriptor descriptor(folder.file("a.gpx"), O_WRONLY | O_CREAT);
    const auto exporter = GPXExporter::initWithDescriptor(descriptor.number);
    ASSERT_NE(exporter, nullptr);
    exporter->wayPoint({1, 2, 0, 0, 0}, nullptr);
    exporter->gpsStateChange(gpsState::finished);
    EXPECT_FALSE(exporter->writeFailure());
    EXPECT_EQ(readFile(folder.file("a.gpx")), waypointDocument());
    EXPECT_EQ(::write(descriptor.number, "more", 4), 4);
}

TEST(ExporterTargets, ADescriptorThatCannotBeWrittenMakesNoExporter) {
    const TemporaryFolder folder;
    const Descriptor descriptor(folder.write("a.gpx", "kept"), O_RDONLY);
    for (const int number : {descriptor.number, -1}) {
        errno = 0;
        EXPECT_EQ(GPXExporter::initWithDescriptor(number), nullptr);
        EXPECT_EQ(errno, EBADF);
        errno = 0;
        EXPECT_EQ(GPXCreateWithDescriptor(number), nullptr);
        EXPECT_EQ(errno, EBADF);
    }
    EXPECT_EQ(readFile(folder.file("a.gpx")), "kept");
}

TEST(ExporterTargets, MemoryGetsTheWholeDocument) {
    std::string text;
    const auto exporter = GPXExporter::initInMemory(text);
    ASSERT_NE(exporter, nullptr);
    exporter->wayPoint({1, 2, 0, 0, 0}, nullptr);
    exporter->gpsStateChange(gpsState::finished);
    EXPECT_FALSE(exporter->writeFailure());
    EXPECT_EQ(text, waypointDocument());
}

TEST(ExporterTargets, APathThatHoldsANULIsRefused) {
    const TemporaryFolder folder;
    const std::string path = folder.file("a.gpx") + std::string(1, '\0') + "b";
    errno = 0;
    EXPECT_EQ(GPXExporter::initWithPath(path), nullptr);
    EXPECT_EQ(errno, EINVAL);
    EXPECT_FALSE(std::filesystem::exists(folder.file("a.gpx"))) << "not the path up to the NUL";
}

TEST(ExporterTargets, FlushAndSyncMakeTheCallsSoFarVisible) {
    const TemporaryFolder folder;
    const std::string path = folder.file("a.gpx");
    const auto exporter = GPXExporter::initWithPath(path);
    ASSERT_NE(exporter, nullptr);
    EXPECT_EQ(readFile(path), "");
    EXPECT_FALSE(exporter->flush());
    EXPECT_TRUE(readFile(path).ends_with(">\n")) << "the header";
    exporter->trackPoint({1, 2, 0, 0, 0}, nullptr);
    EXPECT_FALSE(exporter->sync());
    EXPECT_TRUE(readFile(path).ends_with("</trkpt>\n"));
    exporter->gpsStateChange(gpsState::finished);
    EXPECT_FALSE(exporter->flush()) << "nothing is left to do";
    EXPECT_FALSE(exporter->sync());
    EXPECT_TRUE(readFile(path).ends_with("</trk>\n" + documentEnd));
}

TEST(ExporterTargets, FlushAndSyncTellAFailure) {
    if (!std::filesystem::exists("/dev/full")) {
        GTEST_SKIP() << "the system has no /dev/full";
    }
    const auto exporter = GPXExporter::initWithPath("/dev/full");
    ASSERT_NE(exporter, nullptr);
    EXPECT_EQ(exporter->flush(), std::errc::no_space_on_device);
    EXPECT_EQ(exporter->sync(), std::errc::no_space_on_device);
    exporter->gpsStateChange(gpsState::finished);
    EXPECT_EQ(exporter->flush(), std::errc::no_space_on_device) << "still known";
}

TEST(ExporterTargets, WithoutADocumentThereIsNothingToFlush) {
    const auto exporter = GPXExporter::init();
    EXPECT_EQ(exporter->document(), nullptr);
    EXPECT_FALSE(exporter->flush());
    EXPECT_FALSE(exporter->sync());
}

TEST(ExporterTargets, TheDocumentTakesElementsOfTheHost) {
    std::string text;
    const auto exporter = GPXExporter::initInMemory(text);
    ASSERT_NE(exporter->document(), nullptr);
    GPXWriteElementWithString(exporter->document(), "metadata", nullptr);
    exporter->gpsStateChange(gpsState::finished);
    EXPECT_EQ(exporter->document(), nullptr);
    EXPECT_TRUE(text.ends_with("<metadata></metadata>\n</gpx>\n")) << text;
}

TEST(WriterTargets, ADocumentInMemoryIsHandedOverWhenItIsClosed) {
    GPXRef document = GPXCreateInMemory();
    ASSERT_NE(document, nullptr);
    GPXWriteRouteStart(document, 1, "a", nullptr);
    size_t length = 0;
    char *text = GPXCloseInMemory(document, &length);
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(std::string(text, length),
              "<rte>\n<name>a</name>\n\t<number>1</number>\n</rte>\n</gpx>\n");
    EXPECT_EQ(text[length], '\0');
    std::free(text);

    char *other = GPXCloseInMemory(GPXCreateInMemory(), nullptr);
    EXPECT_STREQ(other, "</gpx>\n");
    std::free(other);
}

TEST(WriterTargets, FailuresAreTold) {
    if (!std::filesystem::exists("/dev/full")) {
        GTEST_SKIP() << "the system has no /dev/full";
    }
    GPXRef document = GPXCreate("/dev/full");
    ASSERT_NE(document, nullptr);
    GPXWriteHeader(document, "nobody");
    EXPECT_EQ(GPXWriteFailure(document), 0) << "nothing was written yet";
    EXPECT_EQ(GPXFlush(document), ENOSPC);
    EXPECT_EQ(GPXSync(document), ENOSPC);
    EXPECT_EQ(GPXWriteFailure(document), ENOSPC);
    EXPECT_EQ(GPXCloseChecked(document), ENOSPC);
}

TEST(WriterTargets, WhereAllWentWellNothingIsTold) {
    const TemporaryFolder folder;
    GPXRef document = GPXCreate(folder.file("a.gpx").c_str());
    ASSERT_NE(document, nullptr);
    GPXWriteHeader(document, "nobody");
    EXPECT_EQ(GPXFlush(document), 0);
    EXPECT_EQ(GPXSync(document), 0);
    EXPECT_EQ(GPXWriteFailure(document), 0);
    EXPECT_EQ(GPXCloseChecked(document), 0);
}

TEST(WriterTargets, AnyOutputFileWillDo) {
    std::string text;
    GPXRef document = createDocument(OutputFile::inMemory(text));
    ASSERT_NE(document, nullptr);
    EXPECT_FALSE(closeDocument(document));
    EXPECT_EQ(text, documentEnd);
    EXPECT_EQ(createDocument(nullptr), nullptr);
}

} // namespace
} // namespace pelluvia
