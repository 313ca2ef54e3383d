// SPDX-License-Identifier: MIT

#include <tests/faults/FaultyRun.h>

#ifdef PELLUVIA_HAS_STORAGE
#include <Pelluvia/storage/Bookmark.h>
#include <Pelluvia/storage/UserDefaults.h>
#endif

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <ostream>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

/// \file
/// What becomes of the command when the system fails: every call of a kind fails once, the first in
/// one run, the second in the next, until a run makes so few calls that none fails.

namespace pelluvia {
namespace {

namespace fs = std::filesystem;
using testing::FaultyOutcome;
using ::testing::HasSubstr;
using testing::Outcome;
using testing::TemporaryFolder;

/// The content of all files in a folder, by their paths in it.
using Files = std::map<std::string, std::string>;

Files filesIn(const fs::path &folder) {
    Files files;
    for (const auto &entry : fs::recursive_directory_iterator(folder)) {
        if (entry.is_regular_file()) {
            files[entry.path().lexically_relative(folder).string()] =
                testing::readFile(entry.path());
        }
    }
    return files;
}

/// A document of which the reader and the writer need several calls.
std::string document() {
    std::string text = R"(<gpx xmlns="http://www.topografix.com/GPX/1/1"><trk><trkseg>)";
    for (int i = 0; i < 4000; ++i) {
        text += R"(<trkpt lat="47.)" + std::to_string(100'000 + i) + R"(" lon="8.5"><ele>)" +
                std::to_string(i % 500) + R"(</ele></trkpt>)";
    }
    return text + "</trkseg></trk></gpx>";
}

std::string sentences() {
    std::string text;
    for (int i = 0; i < 50; ++i) {
        const std::string second = std::to_string(10 + i);
        text +=
            "$GPRMC,1200" + second + ",A,4800." + second + "0,N,01100.000,E,10.0,,150824,,,A\r\n";
    }
    return text;
}

std::string calls() {
    std::string text = R"({"call":"startTransfer:kind:extra:","kind":3,"extra":null})"
                       "\n";
    for (int i = 0; i < 1000; ++i) {
        text += R"({"call":"wayPoint:extra:","point":{"latitude":1,"longitude":2,"altitude":3,)"
                R"("time":4,"test":5},"extra":null})"
                "\n";
    }
    return text + R"({"call":"endTransfer:","kind":3})"
                  "\n";
}

/// A command, run in a folder with source.gpx, source.jsonl, old.gpx and old.json.
struct Scenario {
    const char *name;
    std::vector<std::string> arguments;
    std::string input = {};
    /// Whether files without a name can be made.
    bool hasTemporaryFiles = true;
    bool isOfStorage = false;
};

void PrintTo(const Scenario &scenario, std::ostream *out) {
    *out << scenario.name;
}

struct Fault {
    const char *name;
    const char *text; ///< call and kind
    int error;        ///< 0 for less than was asked for
    const char *suffix = "";

    /// Whether a program has to do its work nevertheless.
    [[nodiscard]] bool isHarmless() const { return error == 0 || error == EINTR; }
};

void PrintTo(const Fault &fault, std::ostream *out) {
    *out << fault.name;
}

class Faults : public testing::FaultTest<::testing::TestWithParam<std::tuple<Scenario, Fault>>> {
  protected:
    static const Scenario &scenario() { return std::get<0>(GetParam()); }
    static const Fault &fault() { return std::get<1>(GetParam()); }
    /// The storage component takes a file whose opening is interrupted for an unreadable one.
    static bool isBeyondUs() {
        return scenario().isOfStorage && std::string_view(fault().text) == "open:EINTR";
    }

    static void fill(const TemporaryFolder &folder) {
        static const std::string source = document();
        folder.write("source.gpx", source);
        folder.write("source.jsonl", calls());
        folder.write("old.gpx", "old");
        folder.write("old.json", "old");
        if (scenario().isOfStorage) {
            grant(folder);
        }
    }

    static void grant([[maybe_unused]] const TemporaryFolder &folder) {
#ifdef PELLUVIA_HAS_STORAGE
        fs::create_directory(folder.file("GPS"));
        const auto bookmark =
            Bookmark::bookmarkData(URL::fileURLWithPath(folder.file("GPS")), nullptr);
        ASSERT_TRUE(bookmark);
        UserDefaults(folder.file("pelluvia")).setObject(*bookmark, "GPSStorageAuthorization:/GPS");
#endif
    }

    /// Runs the command, with the fault at the n-th call, or with none (0).
    static FaultyOutcome run(const TemporaryFolder &folder, int number) {
        testing::Run how{.arguments = scenario().arguments,
                         .input = scenario().input,
                         .environment = {{"XDG_CONFIG_HOME", folder.path().string()}},
                         .folder = folder.path().string()};
        if (!scenario().hasTemporaryFiles) {
            how.environment.emplace_back("PELLUVIA_FAULT_TMPFILE", "1");
        }
        return testing::runWithFault(how, number == 0
                                              ? ""
                                              : std::string(fault().text) + ":" +
                                                    std::to_string(number) + fault().suffix);
    }
};

bool says(const Outcome &outcome, const std::string &text) {
    return outcome.errors.find(text) != std::string::npos;
}

/// Whether a file that is new or changed is what the command says of it: complete, unless told
/// otherwise.
bool isAsSaid(const std::string &name, const std::string &content, const Outcome &outcome,
              const Files &complete) {
    const auto whole = complete.find(name);
    if (outcome.status == 0) {
        return whole != complete.end() && whole->second == content;
    }
    const auto hasContent = [&content](const auto &file) { return file.second == content; };
    return (says(outcome, name + " is complete") &&
            std::any_of(complete.begin(), complete.end(), hasContent)) ||
           says(outcome, name + " is partial") || says(outcome, name + " holds what was written");
}

/// No file that was there is lost, and none is half of what it should be without a word.
void expectGoodFiles(const Outcome &outcome, const Files &before, const Files &after,
                     const Files &complete) {
    for (const auto &[name, content] : before) {
        EXPECT_TRUE(after.contains(name)) << name;
    }
    for (const auto &[name, content] : after) {
        const auto old = before.find(name);
        const bool isOld = old != before.end() && old->second == content;
        EXPECT_TRUE((isOld && outcome.status != 0) || isAsSaid(name, content, outcome, complete))
            << name;
    }
}

TEST_P(Faults, LeaveOldOrNewFilesAndAreSaid) {
    const TemporaryFolder good;
    fill(good);
    const Outcome expected = run(good, 0);
    ASSERT_EQ(expected.status, 0) << expected.errors;
    const Files complete = filesIn(good.path());

    constexpr int most = 2000; // more calls than any of the commands makes
    bool wasHit = true;
    for (int number = 1; wasHit && !HasFailure(); ++number) {
        ASSERT_LT(number, most);
        SCOPED_TRACE(::testing::Message() << fault().text << ' ' << number);
        const TemporaryFolder folder;
        fill(folder);
        const Files before = filesIn(folder.path());
        const FaultyOutcome outcome = run(folder, number);
        wasHit = outcome.wasHit;
        SCOPED_TRACE("status " + std::to_string(outcome.status) + ": " + outcome.errors);
        if (!wasHit || (fault().isHarmless() && !isBeyondUs())) {
            EXPECT_EQ(outcome.status, 0);
        }
        if (outcome.status == 0) {
            EXPECT_EQ(outcome.errors, expected.errors);
            if (!scenario().isOfStorage) { // which prints a path in the folder
                EXPECT_EQ(outcome.output, expected.output);
            }
        } else {
            EXPECT_TRUE(outcome.status == 1 || outcome.status == 3);
            EXPECT_THAT(
                outcome.errors,
                HasSubstr(scenario().isOfStorage ? "pelluvia: " : std::strerror(fault().error)));
        }
        // Of the storage's files nothing changes, and they name the folder.
        expectGoodFiles(outcome, before, filesIn(folder.path()),
                        scenario().isOfStorage ? before : complete);
    }
}

const std::vector<Scenario> scenarios = {
    {.name = "NewFile", .arguments = {"convert", "source.gpx", "new.gpx"}},
    {.name = "ReplacedFile", .arguments = {"convert", "--force", "source.gpx", "old.gpx"}},
    // Recorded, since an import that cannot count goes on without counts, and a log shows that.
    {.name = "Calls", .arguments = {"convert", "--sync", "--record", "source.gpx", "new.jsonl"}},
    {.name = "Log", .arguments = {"convert", "source.jsonl", "new.gpx"}},
    {.name = "StandardStreams", .arguments = {"convert", "-", "-"}, .input = document()},
    {.name = "Summary",
     .arguments = {"convert", "--force", "--telemetry", "old.json", "source.gpx", "old.gpx"}},
    {.name = "Receiver",
     .arguments = {"convert", "--from", "nmea", "-", "new.gpx"},
     .input = sentences()},
    {.name = "NewHiddenFile",
     .arguments = {"convert", "source.gpx", "new.gpx"},
     .hasTemporaryFiles = false},
    {.name = "ReplacedHiddenFile",
     .arguments = {"convert", "--force", "source.gpx", "old.gpx"},
     .hasTemporaryFiles = false},
    {.name = "Info", .arguments = {"info", "source.gpx"}},
#ifdef PELLUVIA_HAS_STORAGE
    {.name = "Authorized", .arguments = {"authorized", "/GPS"}, .isOfStorage = true},
#endif
};

const std::vector<Fault> faults = {
    {.name = "OpenFails", .text = "open:EIO", .error = EIO},
    {.name = "OpenIsInterrupted", .text = "open:EINTR", .error = EINTR},
    {.name = "ReadFails", .text = "read:EIO", .error = EIO},
    {.name = "ReadIsInterrupted", .text = "read:EINTR", .error = EINTR},
    {.name = "ReadIsShort", .text = "read:short", .error = 0},
    {.name = "WriteFails", .text = "write:EIO", .error = EIO},
    {.name = "DiskIsFull", .text = "write:ENOSPC", .error = ENOSPC, .suffix = "+"},
    {.name = "WriteIsInterrupted", .text = "write:EINTR", .error = EINTR},
    {.name = "WriteIsShort", .text = "write:short", .error = 0},
    {.name = "CloseFails", .text = "close:EIO", .error = EIO},
    {.name = "CloseIsInterrupted", .text = "close:EINTR", .error = EINTR},
    {.name = "RenameFails", .text = "rename:EIO", .error = EIO},
    {.name = "FolderIsFull", .text = "rename:ENOSPC", .error = ENOSPC},
    {.name = "SyncFails", .text = "sync:EIO", .error = EIO},
    {.name = "SyncIsInterrupted", .text = "sync:EINTR", .error = EINTR},
};

INSTANTIATE_TEST_SUITE_P(
    , Faults, ::testing::Combine(::testing::ValuesIn(scenarios), ::testing::ValuesIn(faults)),
    [](const auto &each) {
        return std::string(std::get<0>(each.param).name) + std::get<1>(each.param).name;
    });

} // namespace
} // namespace pelluvia
