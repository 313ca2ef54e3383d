// SPDX-License-Identifier: MIT

#include <Pelluvia/model/ExtrasKeys.h>
#include <Pelluvia/model/NullReceiver.h>
#include <Pelluvia/model/TransferKind.h>
#include <tests/gpximport/Importing.h>

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <gtest/gtest.h>
#include <memory>
#include <new>
#include <set>
#include <string>
#include <vector>

/// \file
/// Counts what the C++ side of an import allocates, by replacing the operators of this program. The
/// XML library's own memory does not go this way.

namespace {

std::atomic<std::size_t> allocations = 0;

} // namespace

// Never inlined: the compiler would see memory of `malloc` given to `delete` and warn.
[[gnu::noinline]] void *operator new(std::size_t size) {
    ++allocations;
    if (void *memory = std::malloc(size)) {
        return memory;
    }
    throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void *memory) noexcept {
    std::free(memory);
}
[[gnu::noinline]] void operator delete(void *memory, std::size_t /*size*/) noexcept {
    std::free(memory);
}

namespace pelluvia {
namespace {

/// The allocations of the import of a track with so many points.
std::size_t allocationsFor(int points) {
    std::string content;
    for (int point = 0; point < points; ++point) {
        content += "<trkpt lat='47.123456' lon='8.123456'><ele>431.25</ele>"
                   "<time>2020-06-01T08:26:40Z</time><extensions><tpx:TrackPointExtension>"
                   "<tpx:atemp>21.5</tpx:atemp><tpx:hr>120</tpx:hr><tpx:cad>80</tpx:cad>"
                   "</tpx:TrackPointExtension></extensions></trkpt>\n";
    }
    const testing::TemporaryFolder folder;
    const std::string path =
        folder.write("ride.gpx", testing::gpx("<trk><trkseg>" + content + "</trkseg></trk>"));
    const auto importer = GPXFileImporter::initWithReceiver(std::make_shared<NullReceiver>());
    const std::size_t before = allocations;
    EXPECT_EQ(importer->processFile(path), nullptr);
    return allocations - before;
}

TEST(Allocation, DoesNotDependOnTheNumberOfPointsWithoutTexts) {
    // The first points are needed to learn how they look.
    EXPECT_EQ(allocationsFor(1000), allocationsFor(10'000));
}

/// Keeps the places of the names in memory, not the names.
class NamePlaces : public NullReceiver {
  public:
    void wayPoint(GPSPoint /*point*/, const Dictionary *extra) override {
        places.push_back(extra->string(extras::name)->data());
    }

    std::vector<const char *> places;
};

TEST(Allocation, UsesTheMemoryOfATextAgainForTheNextPoint) {
    std::string content;
    for (int point = 10; point < 100; ++point) {
        content += "<wpt lat='47' lon='8'><name>GC" + std::to_string(point) + "</name></wpt>";
    }
    const testing::TemporaryFolder folder;
    const std::string path = folder.write("caches.gpx", testing::gpx(content));
    const auto receiver = std::make_shared<NamePlaces>();
    EXPECT_EQ(GPXFileImporter::initWithReceiver(receiver)->processFile(path), nullptr);
    ASSERT_EQ(receiver->places.size(), 90U);
    EXPECT_EQ(std::set(receiver->places.begin(), receiver->places.end()).size(), 1U);
}

} // namespace
} // namespace pelluvia
