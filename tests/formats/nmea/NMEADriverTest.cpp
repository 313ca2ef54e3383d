// SPDX-License-Identifier: MIT

#include <Pelluvia/formats/nmea/NMEADriver.h>
#include <Pelluvia/formats/nmea/live/LiveView.h>

#include <tests/formats/nmea/Logs.h>
#include <tests/formats/nmea/PlayedReceiver.h>
#include <tests/support/LogCapture.h>
#include <tests/support/TemporaryFolder.h>

#include <Pelluvia/values/CocoaErrors.h>

#include <array>
#include <cerrno>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stop_token>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <termios.h>

namespace pelluvia {
namespace {

using testing::CallList;
using ::testing::ElementsAre;
using testing::logOf;
using testing::PlayedReceiver;
using testing::TemporaryFolder;
using testing::WakeUp;

/// The sentences of one second: 12:00:00 and so many more on 2024-08-15.
std::string second(int number) {
    const std::string time = "1200" + std::to_string(number / 10) + std::to_string(number % 10);
    const std::string place = ",480" + std::to_string(number % 10) + ".000,N,01131.000,E,";
    return logOf({"GPRMC," + time + ",A" + place + "010.0,084.4,150824,,,A",
                  "GPGGA," + time + place + "1,08,0.9,545.4,M,46.9,M,,", "GPGSV,1,1,00",
                  "GPGSA,A,3,04,05,,,,,,,,,,,2.5,1.3,2.1"});
}
constexpr std::int64_t noon = 1'723'723'200;

/// How reading a source went.
struct Outcome {
    NMEAEnding ending;
    ErrorPtr error;
    NMEATally tally;
};
using Setting = std::function<void(NMEADriver &driver)>;

/// Reads a path with a driver that `set` has set up.
Outcome readNMEA(const std::string &path, GPSOutputReceiver &receiver, const Setting &set = {}) {
    NMEADriver driver(receiver);
    if (set) {
        set(driver);
    }
    const ErrorPtr error = driver.processFile(path);
    return {driver.ending(), error, driver.tally()};
}
Setting endingAt(const WakeUp &wakeUp) {
    return [&wakeUp](NMEADriver &driver) { driver.setEndDescriptor(wakeUp.descriptor()); };
}

TEST(NMEADriver, ReadsAFile) {
    const TemporaryFolder folder;
    const std::string path = folder.write("log.nmea", second(0) + second(1));
    CallList list;
    const Outcome outcome = readNMEA(path, list);
    EXPECT_EQ(outcome.ending, NMEAEnding::Complete);
    EXPECT_FALSE(outcome.error);
    EXPECT_EQ(outcome.tally.points, 2);
    EXPECT_THAT(list.calls, ElementsAre("start 1", "track", "segment", "point", "point", "end 1"));
}

TEST(NMEADriver, ReadsALastLineWithoutAnEnd) {
    const TemporaryFolder folder;
    CallList list;
    EXPECT_EQ(readNMEA(folder.write("log", "$GPGLL,4916.45,N,12311.12,W"), list).tally.points, 1);
}

TEST(NMEADriver, ReadsALogThatIsLargerThanItsBuffer) {
    const TemporaryFolder folder;
    std::string log;
    for (int i = 0; i < 5000; ++i) {
        log += second(i % 60);
    }
    CallList list;
    const Outcome outcome = readNMEA(folder.write("log", log), list);
    EXPECT_EQ(outcome.tally.points, 5000);
    EXPECT_EQ(outcome.tally.badChecksum + outcome.tally.garbage, 0);
}

TEST(NMEADriver, CountsLinesThatAreTooLong) {
    const TemporaryFolder folder;
    CallList list;
    const std::string path = folder.write("log", std::string(200'000, 'x') + "\n" + second(1));
    EXPECT_EQ(readNMEA(path, list).tally.tooLong, 1);
    EXPECT_EQ(list.trackPoints.size(), 1U);
}

TEST(NMEADriver, ReadsANamedPipeToItsEnd) {
    const TemporaryFolder folder;
    const std::string path = folder.file("pipe");
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    std::thread writer([&] {
        const int descriptor = ::open(path.c_str(), O_WRONLY | O_CLOEXEC);
        const std::string log = second(0) + second(1);
        EXPECT_EQ(::write(descriptor, log.data(), log.size()), static_cast<ssize_t>(log.size()));
        ::close(descriptor);
    });
    CallList list;
    const Outcome outcome = readNMEA(path, list);
    writer.join();
    EXPECT_EQ(outcome.ending, NMEAEnding::Complete);
    EXPECT_EQ(list.trackPoints.size(), 2U);
}

TEST(NMEADriver, CanBeInterruptedWhileANamedPipeHasNoWriter) {
    const TemporaryFolder folder;
    const std::string path = folder.file("pipe");
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    const WakeUp wakeUp;
    wakeUp.stop();
    CallList list;
    EXPECT_EQ(readNMEA(path, list, endingAt(wakeUp)).ending, NMEAEnding::Interrupted);
    EXPECT_THAT(list.calls, ElementsAre());
}

TEST(NMEADriver, SaysWhatCannotBeOpened) {
    const TemporaryFolder folder;
    CallList list;
    const Outcome outcome = readNMEA(folder.file("nothing"), list);
    EXPECT_EQ(outcome.ending, NMEAEnding::NotOpened);
    EXPECT_EQ(outcome.error->code(), ENOENT);
    EXPECT_THAT(list.calls, ElementsAre());
}

TEST(NMEADriver, ReportsWhatCannotBeRead) {
    const TemporaryFolder folder;
    CallList list;
    const Outcome outcome = readNMEA(folder.path().string(), list);
    EXPECT_EQ(outcome.ending, NMEAEnding::Unreadable);
    EXPECT_EQ(outcome.error->code(), EISDIR);
    ASSERT_EQ(list.calls.size(), 1U);
    EXPECT_THAT(list.calls[0], ::testing::StartsWith("error cannot be read: "));
}

TEST(NMEADriver, RefusesADeviceThatIsNoSerialLine) {
    for (const char *path : {"/dev/null", "/dev/zero"}) {
        CallList list;
        const Outcome outcome = readNMEA(path, list);
        EXPECT_EQ(outcome.ending, NMEAEnding::NotOpened);
        EXPECT_EQ(outcome.error->localizedDescription(),
                  "cannot be opened: a device, but not a serial line");
        EXPECT_THAT(list.calls, ElementsAre());
    }
}

/// Sends a second at a time, the next when the point of one before has come; pieces of `piece`
/// bytes.
class Conversation {
  public:
    Conversation(const PlayedReceiver &receiver, CallList &list, std::size_t piece)
        : receiver_(receiver), piece_(piece) {
        // Two seconds make the first point.
        say(second(next_++));
        say(second(next_++));
        list.onTrackPoint = [this] {
            if (next_ < 10) {
                say("\x80noise\r\r\n");
                say(second(next_++));
            } else if (atEnd) {
                atEnd();
            }
        };
    }

    std::function<void()> atEnd; ///< called in place of the eleventh second

  private:
    void say(std::string_view bytes) const {
        while (!bytes.empty()) {
            receiver_.send(bytes.substr(0, piece_));
            bytes.remove_prefix(std::min(piece_, bytes.size()));
        }
    }

    const PlayedReceiver &receiver_;
    std::size_t piece_;
    int next_ = 0;
};

TEST(NMEADriver, AnInterruptEndsTheTransferOfALiveReceiver) {
    for (const std::size_t piece : {1U, 7U, 100U, 10'000U}) {
        PlayedReceiver receiver;
        const WakeUp wakeUp;
        CallList list;
        Conversation conversation(receiver, list, piece);
        // The point of the tenth second is still under way when the stop is asked for.
        conversation.atEnd = [&] {
            receiver.send("$GPRMC,1200");
            wakeUp.stop();
        };
        // Called in the middle of decoding, so everything sent before has been read or is.
        const Outcome outcome = readNMEA(receiver.path(), list, endingAt(wakeUp));
        EXPECT_EQ(outcome.ending, NMEAEnding::Interrupted);
        EXPECT_FALSE(outcome.error);
        ASSERT_EQ(list.trackPoints.size(), 10U) << piece;
        for (int i = 0; i < 10; ++i) {
            EXPECT_EQ(list.trackPoints[static_cast<std::size_t>(i)].point.time, noon + i);
        }
        EXPECT_EQ(list.calls.back(), "end 1");
        EXPECT_EQ(outcome.tally.badChecksum, 0);
    }
}

TEST(NMEADriver, AReceiverThatHangsUpIsLostWithWhatItSentBeforeKept) {
    PlayedReceiver receiver;
    CallList list;
    Conversation conversation(receiver, list, 5);
    conversation.atEnd = [&] { receiver.hangUp(); };
    const Outcome outcome = readNMEA(receiver.path(), list);
    EXPECT_EQ(outcome.ending, NMEAEnding::Lost);
    EXPECT_TRUE(outcome.error);
    EXPECT_EQ(list.trackPoints.size(), 10U);
    ASSERT_GE(list.calls.size(), 2U);
    EXPECT_EQ(list.calls.back(), "end 1");
    EXPECT_THAT(list.calls,
                ::testing::Contains(::testing::StartsWith("error the receiver was lost: ")));
}

TEST(NMEADriver, SetsUpTheSerialLineAndRestoresIt) {
    PlayedReceiver receiver;
    termios before{};
    ASSERT_EQ(::tcgetattr(receiver.device(), &before), 0);
    before.c_lflag |= ICANON | ECHO | ISIG;
    before.c_iflag |= ICRNL | IXON;
    ASSERT_EQ(::tcsetattr(receiver.device(), TCSANOW, &before), 0);
    const WakeUp wakeUp;
    CallList list;
    termios during{};
    list.onTrackPoint = [&] {
        EXPECT_EQ(::tcgetattr(receiver.device(), &during), 0);
        wakeUp.stop();
        list.onTrackPoint = nullptr; // last: this function goes with it
    };
    receiver.send(second(0) + second(1));
    const Outcome outcome = readNMEA(receiver.path(), list, [&](NMEADriver &driver) {
        driver.setEndDescriptor(wakeUp.descriptor());
        driver.setBaudRate(38400);
    });
    EXPECT_EQ(outcome.ending, NMEAEnding::Interrupted);
    EXPECT_EQ(::cfgetispeed(&during), static_cast<speed_t>(B38400));
    EXPECT_EQ(during.c_lflag & (ICANON | ECHO | ISIG), 0U);
    EXPECT_EQ(during.c_iflag & (ICRNL | IXON), 0U);

    termios after{};
    ASSERT_EQ(::tcgetattr(receiver.device(), &after), 0);
    EXPECT_EQ(::cfgetispeed(&after), ::cfgetispeed(&before));
    EXPECT_EQ(after.c_lflag, before.c_lflag);
    EXPECT_EQ(after.c_iflag, before.c_iflag);
}

TEST(NMEADriver, RefusesARateThatThereIsNone) {
    PlayedReceiver receiver;
    CallList list;
    const Outcome outcome =
        readNMEA(receiver.path(), list, [](NMEADriver &driver) { driver.setBaudRate(4801); });
    EXPECT_EQ(outcome.ending, NMEAEnding::NotOpened);
    EXPECT_EQ(outcome.error->code(), EINVAL);
}

TEST(NMEADriver, KnowsTheUsualRates) {
    for (const long rate : {300L, 1200L, 2400L, 4800L, 9600L, 19200L, 38400L, 57600L, 115200L}) {
        EXPECT_TRUE(NMEADriver::isBaudRate(rate)) << rate;
    }
    for (const long rate : {-1L, 0L, 1L, 4801L, 1'000'000'000'000L}) {
        EXPECT_FALSE(NMEADriver::isBaudRate(rate)) << rate;
    }
}

TEST(NMEADriver, ShowsALiveSourceAndNoFile) {
    std::string shown;
    const Setting showing = [&](NMEADriver &driver) {
        driver.setStatusLine([&](std::string_view bytes) { shown.append(bytes); });
    };
    const TemporaryFolder folder;
    CallList list;
    (void)readNMEA(folder.write("log", second(0)), list, showing);
    EXPECT_EQ(shown, "");

    PlayedReceiver receiver;
    Conversation conversation(receiver, list, 1000);
    conversation.atEnd = [&] { receiver.hangUp(); };
    (void)readNMEA(receiver.path(), list, showing);
    EXPECT_THAT(shown, ::testing::ContainsRegex("[0-9] points?, 3D fix, 48\\.[01]"));
    EXPECT_TRUE(shown.ends_with("\r\x1B[K")) << "taken away at the end";
}

TEST(NMEADriver, ReadsALogInMemory) {
    CallList list;
    NMEADriver driver(list);
    const std::string log = second(0) + second(1);
    EXPECT_EQ(driver.processText(log), nullptr);
    EXPECT_EQ(driver.ending(), NMEAEnding::Complete);
    EXPECT_EQ(driver.tally().points, 2);
    EXPECT_EQ(driver.readingProgress().position, log.size());
    EXPECT_EQ(driver.readingProgress().size, log.size());
}

TEST(NMEADriver, ReadsADescriptorFromWhereItStands) {
    const TemporaryFolder folder;
    const std::string first = second(0);
    const std::string path = folder.write("log", first + second(1) + second(2));
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_EQ(::lseek(descriptor, static_cast<off_t>(first.size()), SEEK_SET),
              static_cast<off_t>(first.size()));
    CallList list;
    NMEADriver driver(list);
    EXPECT_EQ(driver.processDescriptor(descriptor), nullptr);
    EXPECT_EQ(driver.tally().points, 2);
    EXPECT_EQ(driver.readingProgress().size, second(1).size() + second(2).size());
    EXPECT_EQ(::close(descriptor), 0) << "it was borrowed";
}

TEST(NMEADriver, ReadsOneSourceAfterTheOther) {
    CallList list;
    NMEADriver driver(list);
    EXPECT_EQ(driver.processText(second(0) + "$GPRMC,12"), nullptr);
    EXPECT_EQ(driver.processText(second(1)), nullptr);
    EXPECT_EQ(driver.tally().points, 1);
    EXPECT_EQ(driver.tally().badChecksum + driver.tally().garbage, 0);
    EXPECT_EQ(list.trackPoints.size(), 2U);
}

TEST(NMEADriver, RefusesAPathThatHoldsANUL) {
    const TemporaryFolder folder;
    std::string path = folder.write("log", second(0));
    path.append("\0.nmea", 6);
    CallList list;
    const Outcome outcome = readNMEA(path, list);
    EXPECT_EQ(outcome.ending, NMEAEnding::NotOpened);
    EXPECT_EQ(outcome.error->code(), EINVAL);
    EXPECT_THAT(list.calls, ElementsAre());
}

TEST(NMEADriver, TellsHowFarItHasRead) {
    const TemporaryFolder folder;
    std::string log;
    for (int i = 0; i < 1000; ++i) {
        log += second(i % 60);
    }
    CallList list;
    NMEADriver driver(list);
    std::uint64_t before = 0;
    list.onTrackPoint = [&] {
        const ReadingProgress progress = driver.readingProgress();
        EXPECT_GE(progress.position, before);
        EXPECT_LE(progress.position, log.size());
        EXPECT_EQ(progress.size, log.size());
        before = progress.position;
    };
    EXPECT_EQ(driver.processFile(folder.write("log", log)), nullptr);
    EXPECT_GT(before, log.size() / 2);
    EXPECT_EQ(driver.readingProgress().position, log.size());
}

/// A stop that is requested at a call.
TEST(NMEADriver, MakesNoCallBehindAStopButTheEndOfTheTransfer) {
    const std::string log =
        second(0) + second(1) + second(2) + logOf({"GPWPL,4916.45,N,12311.12,W,A"});
    const TemporaryFolder folder;
    const std::string path = folder.write("log", log);
    CallList all;
    ASSERT_EQ(readNMEA(path, all).error, nullptr);
    for (std::size_t stopAt = 0; stopAt < all.calls.size(); ++stopAt) {
        class Stopping : public CallList {
          public:
            std::stop_source stop;
            std::size_t at = 0;
            void newTrack(const Dictionary *extra) override {
                CallList::newTrack(extra);
                count();
            }
            void newTrackSegment() override {
                CallList::newTrackSegment();
                count();
            }
            void trackPoint(GPSPoint point, const Dictionary *extra) override {
                CallList::trackPoint(point, extra);
                count();
            }
            void wayPoint(GPSPoint point, const Dictionary *extra) override {
                CallList::wayPoint(point, extra);
                count();
            }
            void startTransfer(const void *sender, int kind, const Dictionary *extra) override {
                CallList::startTransfer(sender, kind, extra);
                count();
            }
            void endTransfer(int kind) override {
                CallList::endTransfer(kind);
                count();
            }

          private:
            void count() {
                if (calls.size() > at) {
                    stop.request_stop();
                }
            }
        } list;
        list.at = stopAt;
        const Outcome outcome = readNMEA(
            path, list, [&](NMEADriver &driver) { driver.setStopToken(list.stop.get_token()); });
        std::vector<std::string> expected(
            all.calls.begin(), all.calls.begin() + static_cast<std::ptrdiff_t>(stopAt) + 1);
        const bool isOver = stopAt + 1 == all.calls.size();
        if (!expected.back().starts_with("end ")) {
            expected.emplace_back(stopAt < 7 ? "end 1" : "end 3");
        }
        EXPECT_EQ(list.calls, expected) << stopAt;
        EXPECT_EQ(outcome.ending, isOver ? NMEAEnding::Complete : NMEAEnding::Stopped) << stopAt;
        if (!isOver) {
            ASSERT_NE(outcome.error, nullptr) << stopAt;
            EXPECT_EQ(outcome.error->domain(), NSCocoaErrorDomain);
            EXPECT_EQ(outcome.error->code(), NSUserCancelledError);
        }
    }
}

TEST(NMEADriver, AStopEndsTheWaitingForASource) {
    const TemporaryFolder folder;
    const std::string path = folder.file("pipe");
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    CallList list;
    std::stop_source stop;
    std::thread stopping;
    const Outcome outcome = readNMEA(path, list, [&](NMEADriver &driver) {
        driver.setStopToken(stop.get_token());
        // Nobody will ever write to the pipe.
        driver.setSourcePaused([&] { stopping = std::thread([&] { stop.request_stop(); }); });
    });
    stopping.join();
    EXPECT_EQ(outcome.ending, NMEAEnding::Stopped);
    EXPECT_EQ(outcome.error->code(), NSUserCancelledError);
    EXPECT_THAT(list.calls, ElementsAre());
}

TEST(NMEADriver, TellsWhenTheSourcePauses) {
    std::array<int, 2> pipe{};
    ASSERT_EQ(::pipe2(pipe.data(), O_CLOEXEC), 0);
    const auto send = [&](const std::string &bytes) {
        EXPECT_EQ(::write(pipe[1], bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    };
    CallList list;
    NMEADriver driver(list);
    std::vector<std::size_t> points; // that were known at each pause; each brings the next second
    driver.setSourcePaused([&] {
        points.push_back(list.trackPoints.size());
        if (points.size() < 5) {
            send(second(static_cast<int>(points.size())));
        } else {
            ::close(pipe[1]);
        }
    });
    send(second(0));
    EXPECT_EQ(driver.processDescriptor(pipe[0]), nullptr);
    ::close(pipe[0]);
    // All seconds but the one that may still be under way.
    EXPECT_THAT(points, ElementsAre(0U, 1U, 2U, 3U, 4U));
    EXPECT_EQ(list.trackPoints.size(), 5U);
}

TEST(NMEADriver, AFileNeverPauses) {
    const TemporaryFolder folder;
    CallList list;
    int pauses = 0;
    (void)readNMEA(folder.write("log", second(0)), list,
                   [&](NMEADriver &driver) { driver.setSourcePaused([&] { ++pauses; }); });
    EXPECT_EQ(pauses, 0);
}

TEST(LooksLikeNMEA, IsTrueOfLogs) {
    EXPECT_TRUE(looksLikeNMEA(second(0)));
    EXPECT_TRUE(looksLikeNMEA("# a comment\n\r\n  $GPGLL,4916.45,N,12311.12,W,225444,A*31\r\n"));
    EXPECT_TRUE(looksLikeNMEA("48.1,N*33\r\n" + second(0))) << "begins within a sentence";
    EXPECT_TRUE(looksLikeNMEA("$GPGLL,4916.45,N,12311.12,W")) << "no checksum, but a known type";
    EXPECT_TRUE(looksLikeNMEA(logOf({"PGRMZ,93,f,3"}))) << "a maker's own";
}

TEST(LooksLikeNMEA, IsFalseOfOthers) {
    for (const char *text : {"", "\n", "$", "$$$$", "$1,200.00 was the price\n", "$PGRMZ,93,f,3\n",
                             "$GPGLL,4916.45,N*00\n",
                             "<?xml version=\"1.0\"?>\n<gpx><name>$GPGLL,4916.45,N</name></gpx>\n",
                             "{\"call\":\"newTrackSegment\"}\n", "$*00\n"}) {
        EXPECT_FALSE(looksLikeNMEA(text)) << text;
    }
    EXPECT_FALSE(looksLikeNMEA(std::string_view("\0\0\0$GPGLL", 9)));
}

TEST(LooksLikeNMEA, LogsNothing) {
    const testing::LogCapture log;
    EXPECT_FALSE(looksLikeNMEA("$GPRMC," + std::string(100, ',') + "\n"));
    EXPECT_THAT(log.lines, ElementsAre());
}

TEST(NMEADriver, ReadsTheDateOfAnOption) {
    EXPECT_EQ(NMEADriver::dayOf("1970-01-01"), 0);
    EXPECT_EQ(NMEADriver::dayOf("2024-02-29"), 19'782);
    for (const char *text :
         {"", "2024-02-30", "2024-13-01", "1969-12-31", "24-02-29", "2024/02/29", "2024-02-290",
          "2024-2-29", " 2024-02-2", "2024-02-2x", "20240-2-29"}) {
        EXPECT_FALSE(NMEADriver::dayOf(text)) << text;
    }
}

} // namespace
} // namespace pelluvia
