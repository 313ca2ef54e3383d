// SPDX-License-Identifier: MIT

#include <tests/gpximport/Importing.h>
#include <tests/gpximport/RandomGPX.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <tests/support/Damage.h>
#include <tests/support/GPXFiles.h>
#include <tests/support/Sanitized.h>
#include <tests/support/TemporaryFolder.h>
#include <tests/support/XMLEngineVariable.h>
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
    Imported importBy(const char *engine, const std::string &path) {
        variable.set(engine);
        return Importing().file(path);
    }

    /// Whether the calls, the result and the log are the same; tells what is not.
    bool agreeOn(const std::string &path) {
        const Imported one = importBy("automatic", path);
        const Imported other = importBy("libxml2", path);
        EXPECT_EQ(one.calls, other.calls);
        EXPECT_EQ(resultOf(one), resultOf(other));
        EXPECT_EQ(one.log, other.log);
        return one.calls == other.calls && resultOf(one) == resultOf(other) && one.log == other.log;
    }

    testing::XMLEngineVariable variable;
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

TEST_F(XMLEngines, ImportLongTextsAlike) {
    const testing::TemporaryFolder folder;
    const std::string piece = std::string(100'000, 'x') + "<!-- -->";
    for (const int pieces : {9, 11, 101}) {
        std::string text;
        for (int i = 0; i < pieces; ++i) {
            text += piece;
        }
        for (const char *name : {"name", "unknown"}) {
            const std::string element = "<" + std::string(name) + ">" + text + "</" + name + ">";
            const std::string path = folder.write(
                "long.gpx", testing::gpx("<wpt lat='1' lon='2'>" + element + "</wpt>"));
            EXPECT_TRUE(agreeOn(path)) << pieces << " pieces in " << name;
        }
    }
}

/// Points in a foreign namespace begin nowhere, so they are made of what is left over: of the pass
/// before, or of an import before.
TEST_F(XMLEngines, LeaveTheSameOver) {
    const std::string track = "<tpx:hr>101</tpx:hr><tpx:cad>81</tpx:cad><tpx:atemp>21.5</tpx:atemp>"
                              "<gpxdata:distance sensor='wheel'>7.5</gpxdata:distance>";
    const std::string cache =
        "<gs:cache><gs:name>Bridge</gs:name><gs:owner>Ann</gs:owner><gs:type>Micro</gs:type>"
        "<gs:difficulty>2</gs:difficulty><gs:terrain>3</gs:terrain>"
        "<gs:encoded_hints>under</gs:encoded_hints></gs:cache><gpxx:Proximity>9</gpxx:Proximity>";
    const std::string texts = "<name>n</name><number>5</number><cmt>c</cmt><desc>d</desc>"
                              "<sym>s</sym><url>u</url><urlname>v</urlname>";
    const std::string point =
        " lat='1' lon='2'><ele>3</ele><time>2020-06-01T08:26:40Z</time>" + texts + track + cache;
    const std::string foreign = "<x:rtept xmlns:x='x'/><x:wpt xmlns:x='x'/><x:trkpt xmlns:x='x'/>";
    const std::string content[] = {
        "<trk><trkseg><trkpt" + point + "</trkpt></trkseg></trk>",
        "<wpt" + point + "</wpt>",
        "<rte><rtept" + point + "</rtept></rte>",
        "<wpt" + point + "</wpt><wpt lat='3' lon='4'/>",
        "<trk><trkseg><trkpt lat='1' lon='2'/></trkseg></trk><metadata>" + texts + track + cache +
            "</metadata>",
        track + cache,
        // Points within points.
        "<rte><rtept lat='8' lon='9'><trkseg><trkpt" + point + "</trkpt></trkseg></rtept></rte>",
        "<wpt lat='8' lon='9'><trkseg><trkpt" + point + "</trkpt></trkseg></wpt>",
        "<wpt lat='8' lon='9'><rte><rtept" + point + "</rtept></rte></wpt>",
        "<trk><trkseg><trkpt lat='8' lon='9'><wpt" + point + "</wpt></trkpt></trkseg></trk>",
        "<rte><trk><trkseg><trkpt lat='8' lon='9'><rtept" + point +
            "</rtept><ele>5</ele></trkpt></trkseg></trk></rte>",
        "<rte><rtept lat='8' lon='9'><wpt" + point + "</wpt><sym>t</sym></rtept></rte>",
        // Points within points of their kind, which leave the outer ones without their flags.
        "<wpt lat='8' lon='9'><wpt" + point + "</wpt><ele>5</ele></wpt>",
        "<rte><rtept lat='8' lon='9'><rtept" + point + "</rtept><ele>5</ele></rtept></rte>",
        "<rte><rtept lat='8' lon='9'><rtept/><wpt lat='1' lon='2'/></rtept></rte>",
        "<rte><rtept lat='8' lon='9'><rtept/><trkseg><trkpt lat='1' lon='2'/></trkseg></rtept>"
        "</rte>",
        "<wpt lat='8' lon='9'><wpt/><trkseg><trkpt lat='1' lon='2'/></trkseg></wpt>",
        "<wpt lat='8' lon='9'><wpt/><rte><rtept lat='1' lon='2'/></rte></wpt>",
        // One after the other.
        "<wpt" + point + "</wpt><rte><rtept lat='8' lon='9'/></rte>",
        "<trk><trkseg><trkpt" + point + "</trkpt></trkseg></trk><rte><rtept/></rte><wpt/>" +
            "<trk><trkseg/></trk>",
        // Aborts, each in the middle of something.
        "<trk><trkseg><trkpt" + point + "<trkpt/></trkpt></trkseg></trk>",
        "<trk><trkseg><trkpt" + point + "</trkpt><trkseg/></trkseg></trk>",
        "<wpt" + point + "<rtept/></wpt>",
        "<wpt" + point + "<link><trkpt/></link></wpt>",
        "<wpt" + point + "<gs:logs><gs:type>Log</gs:type><trkpt/></gs:logs></wpt>",
        // Foreign points of their own.
        "<x:trkpt xmlns:x='x'/><trk><trkseg><trkpt" + point + "</trkpt></trkseg></trk>",
        "<x:wpt xmlns:x='x'/><trk><trkseg><trkpt" + point + "</trkpt></trkseg></trk>",
        foreign + "<wpt" + point + foreign + "</wpt>" + foreign,
        "<trk><trkseg><x:trkpt xmlns:x='x'>" + track + "</x:trkpt></trkseg></trk>",
    };
    const testing::TemporaryFolder folder;
    const std::string revealing[] = {folder.write("t.gpx", "<x:trkpt xmlns:x='x'/>"),
                                     folder.write("w.gpx", "<x:wpt xmlns:x='x'/>"),
                                     folder.write("r.gpx", testing::gpx(foreign + foreign))};
    const auto callsOf = [&](const char *engine, const std::string &path, testing::Passes passes) {
        variable.set(engine);
        Importing importing(passes);
        std::string calls;
        const auto add = [&](const std::string &file) {
            for (const std::string &each : importing.file(file).calls) {
                calls.append(each).append("\n");
            }
        };
        for (const std::string &each : revealing) {
            add(path);
            add(each);
        }
        return calls;
    };
    for (const std::string &each : content) {
        const std::string path = folder.write("a.gpx", testing::gpx(each));
        for (const testing::Passes passes :
             {testing::Passes{}, testing::onlyRoutes, testing::onlyWaypoints, testing::onlyTracks,
              testing::Passes{true, true, false}, testing::Passes{true, false, true},
              testing::Passes{false, true, true}}) {
            const std::string calls = callsOf("automatic", path, passes);
            EXPECT_EQ(calls, callsOf("libxml2", path, passes)) << each;
            EXPECT_FALSE(calls.empty());
        }
    }
}

/// An import that ended within a waypoint makes the first pass of the next one accept an elevation
/// that the second one does not.
TEST_F(XMLEngines, LeaveTheSameOverAfterAnImportThatWasAborted) {
    const testing::TemporaryFolder folder;
    const std::string paths[] = {
        folder.write("aborted.gpx", testing::gpx("<wpt lat='1' lon='2'><trkpt/></wpt>")),
        folder.write("a.gpx", testing::gpx("<ele>1</ele><wpt lat='3' lon='4'>"
                                           "<urlname>left over</urlname></wpt>")),
        folder.write("w.gpx", "<x:wpt xmlns:x='x'/>")};
    const auto callsOf = [&](const char *engine) {
        variable.set(engine);
        Importing importing;
        std::string calls;
        for (const std::string &path : paths) {
            for (const std::string &each : importing.file(path).calls) {
                calls.append(each).append("\n");
            }
        }
        return calls;
    };
    const std::string calls = callsOf("automatic");
    EXPECT_NE(calls.find("left over"), std::string::npos);
    EXPECT_EQ(calls, callsOf("libxml2"));
}

/// Imports by one importer after the other, of which some end in the middle of a file.
TEST_F(XMLEngines, ImportAnyNestingAlike) {
    constexpr std::uint64_t importers = PELLUVIA_TESTS_SANITIZED != 0 ? 400 : 4'000;
    std::size_t failures = 0;
    for (std::uint64_t seed = 0; seed < importers; ++seed) {
        testing::Chance chance(seed);
        const testing::Passes passes = {!chance.oneIn(4), !chance.oneIn(4), !chance.oneIn(4)};
        testing::RandomGPX random(seed);
        const testing::TemporaryFolder folder;
        const std::string paths[] = {
            folder.write("0.gpx", testing::gpx(random.content())),
            folder.write("1.gpx", testing::gpx(random.content())),
            folder.write("2.gpx", testing::gpx(random.content() +
                                               "<x:rtept xmlns:x='x'/><x:wpt xmlns:x='x'/>")),
            folder.write("3.gpx", "<x:trkpt xmlns:x='x'/>")};
        const auto callsOf = [&](const char *engine) {
            variable.set(engine);
            Importing importing(passes);
            std::string calls;
            for (const std::string &path : paths) {
                const Imported imported = importing.file(path);
                failures += imported.result != nullptr ? 1U : 0U;
                for (const std::string &call : imported.calls) {
                    calls.append(call).append("\n");
                }
                calls.append(resultOf(imported)).append("\n");
            }
            return calls;
        };
        ASSERT_EQ(callsOf("automatic"), callsOf("libxml2")) << "seed " << seed << "\n"
                                                            << testing::readFile(paths[0]) << "\n"
                                                            << testing::readFile(paths[1]) << "\n"
                                                            << testing::readFile(paths[2]);
    }
    // Eight imports each, of which neither most nor few end early.
    EXPECT_GT(failures, importers);
    EXPECT_LT(failures, 6 * importers);
}

TEST_F(XMLEngines, LeaveTheSameOverWhenTheReceiverEndsTheImportEarly) {
    const testing::TemporaryFolder folder;
    const std::string path = folder.write(
        "a.gpx", testing::gpx("<rte><rtept lat='1' lon='2'/></rte><wpt lat='1' lon='2'/>"
                              "<trk><trkseg><trkpt lat='1' lon='2'><extensions>"
                              "<tpx:hr>101</tpx:hr></extensions></trkpt></trkseg></trk>"));
    const std::string revealing = folder.write("t.gpx", "<x:trkpt xmlns:x='x'/>");
    for (const char *lastCall : {"routePoint", "wayPoint"}) {
        const auto callsOf = [&](const char *engine) {
            variable.set(engine);
            Importing importing;
            importing.spy->onCall = [&](const std::string &line) {
                if (line.starts_with(lastCall)) {
                    importing.importer->setDoTracks(false);
                    importing.importer->setDoWaypoints(false);
                }
            };
            EXPECT_EQ(importing.file(path).calls.back().find("endTransfer"), 0U);
            importing.spy->onCall = nullptr;
            importing.importer->setDoTracks(true);
            return importing.file(revealing).data();
        };
        const std::vector<std::string> calls = callsOf("automatic");
        ASSERT_EQ(calls.size(), 1U);
        EXPECT_NE(calls[0].find("101"), std::string::npos) << calls[0];
        EXPECT_EQ(calls, callsOf("libxml2"));
    }
}

/// An import of a file that is an hour old, to which the receiver does something at a call.
Imported importDisturbedAt(const std::string &call, const std::string &document,
                           const std::function<void(const std::string &path)> &disturb) {
    const testing::TemporaryFolder folder;
    const std::string path = folder.write("a.gpx", document);
    std::filesystem::last_write_time(path, std::filesystem::file_time_type::clock::now() -
                                               std::chrono::hours(1));
    Importing importing;
    bool isDone = false;
    importing.spy->onCall = [&](const std::string &line) {
        if (!isDone && line.starts_with(call)) {
            isDone = true;
            disturb(path);
        }
    };
    const Imported imported = importing.file(path);
    EXPECT_TRUE(isDone) << call;
    return imported;
}

/// The receiver changes the file at a call; the import must end there, in order.
void expectEndAt(const std::string &call, const std::string &document,
                 const std::function<void(const std::string &path)> &change) {
    const Imported imported = importDisturbedAt(call, document, change);
    ASSERT_NE(imported.result, nullptr) << call;
    EXPECT_EQ(resultOf(imported), "NSXMLParserErrorDomain 1549 at 0:0 The file has changed since "
                                  "it was first read");
    ASSERT_GE(imported.calls.size(), 2U);
    EXPECT_EQ(imported.calls[imported.calls.size() - 2],
              "error: NSXMLParserErrorDomain 1549 at 0:0");
    EXPECT_TRUE(imported.calls.back().starts_with("endTransfer: "));
}

TEST_F(XMLEngines, AFileThatIsOnlyTouchedIsImported) {
    const std::string good =
        testing::gpx("<rte><rtept lat='1' lon='2'/></rte><wpt lat='1' lon='2'/>"
                     "<trk><trkseg><trkpt lat='1' lon='2'/></trkseg></trk>");
    for (const std::string &document : {good, "<!DOCTYPE gpx>" + good}) {
        const std::function<void(const std::string &path)> touches[] = {
            [](const std::string &path) {
                std::filesystem::last_write_time(path,
                                                 std::filesystem::file_time_type::clock::now());
            },
            [&](const std::string &path) { testing::writeFile(path, document); },
            [&](const std::string &path) {
                testing::writeFile(path + ".new", document);
                std::filesystem::rename(path + ".new", path);
            },
        };
        const Imported expected =
            importDisturbedAt("startTransfer", document, [](const std::string &) {});
        EXPECT_EQ(expected.result, nullptr);
        for (const auto &touch : touches) {
            for (const char *call :
                 {"startTransfer: nil kind: 2", "routePoint", "endTransfer: 2", "trackPoint"}) {
                const Imported imported = importDisturbedAt(call, document, touch);
                EXPECT_EQ(imported.result, nullptr) << call;
                EXPECT_EQ(imported.calls, expected.calls) << call;
            }
        }
    }
}

TEST_F(XMLEngines, AFileThatTheReceiverChangesEndsTheImport) {
    std::string points;
    for (int i = 0; i < 8000; ++i) {
        points += "<trkpt lat='47.5' lon='" + std::to_string(i) + "'/>\n";
    }
    const std::string content = "<rte><rtept lat='1' lon='2'/></rte><wpt lat='1' lon='2'/>"
                                "<trk><trkseg>" +
                                points + "</trkseg></trk>";
    const std::string good = testing::gpx(content);
    const std::function<void(const std::string &path)> changes[] = {
        [&](const std::string &path) { testing::writeFile(path, std::string(good.size(), ' ')); },
        [&](const std::string &path) { testing::writeFile(path, good + "\n"); },
        [&](const std::string &path) { testing::writeFile(path, "<gpx/>"); },
        [&](const std::string &path) { testing::writeFile(path, ""); },
        [&](const std::string &path) { std::filesystem::resize_file(path, good.size() / 2); },
    };
    for (const std::string &document : {good, "<!DOCTYPE gpx>" + good}) {
        for (const auto &change : changes) {
            for (const char *call : {"startTransfer: nil kind: 2", "routePoint", "endTransfer: 2",
                                     "wayPoint", "endTransfer: 3", "newTrack",
                                     "trackPoint: (47.5, 7", "trackPoint: (47.5, 7999"}) {
                expectEndAt(call, document, change);
            }
        }
    }
}

} // namespace
} // namespace pelluvia
