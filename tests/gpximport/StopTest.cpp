// SPDX-License-Identifier: MIT

#include <Pelluvia/gpximport/GPXFileImporter.h>

#include <Pelluvia/values/CocoaErrors.h>
#include <tests/gpximport/Importing.h>

#include <cstddef>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdexcept>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

/// \file
/// Imports that end because the host or the receiver wants it.

namespace pelluvia {
namespace {

using ::testing::ElementsAre;
using testing::gpx;
using testing::Imported;
using testing::Importing;
using ::testing::IsEmpty;

const std::string everything =
    gpx("<rte><name>R</name><rtept lat='1' lon='1'/><rtept lat='1' lon='2'/></rte>"
        "<wpt lat='2' lon='1'><name>A</name></wpt><wpt lat='2' lon='2'/>"
        "<trk><trkseg><trkpt lat='3' lon='1'/><trkpt lat='3' lon='2'/></trkseg>"
        "<trkseg><trkpt lat='3' lon='3'/></trkseg></trk>");

/// Whether it is the error of an import that was stopped.
bool isStop(const ErrorPtr &error) {
    return error != nullptr && error->domain() == NSCocoaErrorDomain &&
           error->code() == NSUserCancelledError;
}

/// An import that is stopped at the n-th call, from 0.
Imported stoppedAt(std::size_t call, const std::string &document = everything) {
    Importing importing;
    std::stop_source stop;
    importing.importer->setStopToken(stop.get_token());
    std::size_t calls = 0;
    importing.spy->onCall = [&](const std::string & /*line*/) {
        if (calls++ == call) {
            stop.request_stop();
        }
    };
    return importing.document(document);
}

TEST(Stop, EndsTheImportAtAnyCall) {
    const std::vector<std::string> calls = Importing().document(everything).calls;
    ASSERT_EQ(calls.size(), 17U);
    for (std::size_t call = 0; call + 1 < calls.size(); ++call) {
        const Imported imported = stoppedAt(call);
        EXPECT_TRUE(isStop(imported.result)) << calls[call];
        EXPECT_THAT(imported.log, IsEmpty()) << calls[call];
        // Those before, and the end of a transfer that is open.
        std::vector<std::string> expected(calls.begin(),
                                          calls.begin() + static_cast<std::ptrdiff_t>(call) + 1);
        if (!expected.back().starts_with("endTransfer")) {
            for (std::size_t next = call; !calls[next++].starts_with("endTransfer");) {
                if (calls[next].starts_with("endTransfer")) {
                    expected.push_back(calls[next]);
                }
            }
        }
        EXPECT_EQ(imported.calls, expected) << calls[call];
    }
}

TEST(Stop, DoesNothingAtTheLastCallOfAll) {
    const Imported imported = stoppedAt(16);
    EXPECT_EQ(imported.result, nullptr);
    EXPECT_EQ(imported.calls.size(), 17U);
}

TEST(Stop, CallsNobodyWhenItWasRequestedBefore) {
    Importing importing;
    std::stop_source stop;
    importing.importer->setStopToken(stop.get_token());
    stop.request_stop();
    const Imported imported = importing.document(everything);
    EXPECT_TRUE(isStop(imported.result));
    EXPECT_THAT(imported.calls, IsEmpty());
    EXPECT_THAT(imported.log, IsEmpty());
}

TEST(Stop, HidesWhatIsWrongBehindIt) {
    for (const std::string &document : {gpx("<rte><rtept lat='1' lon='2'/></rte><trkpt/>"),
                                        gpx("<rte><rtept lat='1' lon='2'/></rte><ele/>") + "<"}) {
        const Imported imported = stoppedAt(2, document); // routePoint
        EXPECT_TRUE(isStop(imported.result));
        EXPECT_THAT(imported.calls,
                    ElementsAre("startTransfer: nil kind: 2 extra: {count: int 1}", "newRoute: nil",
                                "routePoint: (1, 2, 0, 0, 0) extra: {}", "endTransfer: 2"));
    }
}

TEST(Stop, IsWordedForTheUser) {
    EXPECT_EQ(stoppedAt(3).result->localizedDescription(), "The import was stopped");
}

/// The calls of a second import, behind one that ended in the middle of what `end` brings about.
template <class End>
std::vector<std::string> callsAfter(const End &end) {
    Importing importing;
    end(importing);
    importing.spy->onCall = nullptr;
    importing.importer->setStopToken({});
    return importing.document(gpx("<x:wpt xmlns:x='x'/><trk><trkseg/></trk>")).calls;
}

TEST(Stop, LeavesTheImporterAsGoodAsNew) {
    const std::vector<std::string> fresh = callsAfter([](Importing & /*importing*/) {});
    for (const std::string last :
         {"newRoute", "routePoint", "wayPoint", "newTrack", "trackPoint"}) {
        EXPECT_EQ(callsAfter([&last](Importing &importing) {
                      std::stop_source stop;
                      importing.importer->setStopToken(stop.get_token());
                      importing.spy->onCall = [&](const std::string &line) {
                          if (line.starts_with(last)) {
                              stop.request_stop();
                          }
                      };
                      EXPECT_TRUE(isStop(importing.document(everything).result));
                  }),
                  fresh)
            << last;
    }
}

TEST(Stop, AnExceptionOfTheReceiverLeavesTheImporterAsGoodAsNew) {
    const std::vector<std::string> fresh = callsAfter([](Importing & /*importing*/) {});
    for (const std::string last : {"startTransfer", "newRoute", "routePoint", "wayPoint",
                                   "newTrack", "newTrackSegment", "trackPoint", "endTransfer: 1"}) {
        EXPECT_EQ(callsAfter([&last](Importing &importing) {
                      importing.spy->onCall = [&](const std::string &line) {
                          if (line.starts_with(last)) {
                              throw std::runtime_error("enough");
                          }
                      };
                      EXPECT_THROW(static_cast<void>(importing.document(everything)),
                                   std::runtime_error);
                  }),
                  fresh)
            << last;
    }
}

} // namespace
} // namespace pelluvia
