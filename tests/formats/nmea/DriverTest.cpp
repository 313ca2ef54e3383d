#include <Pelluvia/formats/nmea/Driver.h>

#include <tests/formats/nmea/Logs.h>
#include <tests/formats/nmea/PlayedReceiver.h>
#include <tests/support/TemporaryFolder.h>

#include <chrono>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <thread>

#include <fcntl.h>
#include <sys/stat.h>
#include <termios.h>

namespace pelluvia::nmea {
namespace {

using pelluvia::testing::CallList;
using pelluvia::testing::logOf;
using pelluvia::testing::PlayedReceiver;
using pelluvia::testing::TemporaryFolder;
using pelluvia::testing::WakeUp;
using ::testing::ElementsAre;

/// The sentences of one second: 12:00:00 and so many more on 2024-08-15.
std::string second(int number) {
    const std::string time = "1200" + std::to_string(number / 10) + std::to_string(number % 10);
    const std::string place = ",480" + std::to_string(number % 10) + ".000,N,01131.000,E,";
    return logOf({"GPRMC," + time + ",A" + place + "010.0,084.4,150824,,,A",
                  "GPGGA," + time + place + "1,08,0.9,545.4,M,46.9,M,,", "GPGSV,1,1,00",
                  "GPGSA,A,3,04,05,,,,,,,,,,,2.5,1.3,2.1"});
}
constexpr std::int64_t noon = 1'723'723'200;

TEST(Driver, ReadsAFile) {
    const TemporaryFolder folder;
    const std::string path = folder.write("log.nmea", second(0) + second(1));
    CallList list;
    const Outcome outcome = readNMEA(path, {}, list);
    EXPECT_EQ(outcome.ending, Ending::Complete);
    EXPECT_FALSE(outcome.error);
    EXPECT_EQ(outcome.tally.points, 2);
    EXPECT_THAT(list.calls, ElementsAre("start 1", "track", "segment", "point", "point", "end 1"));
}

TEST(Driver, ReadsALastLineWithoutAnEnd) {
    const TemporaryFolder folder;
    CallList list;
    EXPECT_EQ(readNMEA(folder.write("log", "$GPGLL,4916.45,N,12311.12,W"), {}, list).tally.points,
              1);
}

TEST(Driver, ReadsALogThatIsLargerThanItsBuffer) {
    const TemporaryFolder folder;
    std::string log;
    for (int i = 0; i < 5000; ++i) {
        log += second(i % 60);
    }
    CallList list;
    const Outcome outcome = readNMEA(folder.write("log", log), {}, list);
    EXPECT_EQ(outcome.tally.points, 5000);
    EXPECT_EQ(outcome.tally.badChecksum + outcome.tally.garbage, 0);
}

TEST(Driver, CountsLinesThatAreTooLong) {
    const TemporaryFolder folder;
    CallList list;
    const std::string path = folder.write("log", std::string(200'000, 'x') + "\n" + second(1));
    EXPECT_EQ(readNMEA(path, {}, list).tally.tooLong, 1);
    EXPECT_EQ(list.trackPoints.size(), 1U);
}

TEST(Driver, ReadsANamedPipeToItsEnd) {
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
    const Outcome outcome = readNMEA(path, {}, list);
    writer.join();
    EXPECT_EQ(outcome.ending, Ending::Complete);
    EXPECT_EQ(list.trackPoints.size(), 2U);
}

TEST(Driver, CanBeInterruptedWhileANamedPipeHasNoWriter) {
    const TemporaryFolder folder;
    const std::string path = folder.file("pipe");
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    const WakeUp wakeUp;
    wakeUp.stop();
    CallList list;
    EXPECT_EQ(readNMEA(path, {}, list, {.wakeUp = wakeUp.descriptor()}).ending,
              Ending::Interrupted);
    EXPECT_THAT(list.calls, ElementsAre());
}

TEST(Driver, StopsWhenItsReceiverHasNoUseForMore) {
    PlayedReceiver receiver;
    CallList list;
    receiver.send(second(0) + second(1));
    const Outcome outcome =
        readNMEA(receiver.path(), {}, list, {.stop = [&] { return !list.trackPoints.empty(); }});
    EXPECT_EQ(outcome.ending, Ending::Interrupted);
    EXPECT_EQ(list.calls.back(), "end 1");
}

TEST(Driver, SaysWhatCannotBeOpened) {
    const TemporaryFolder folder;
    CallList list;
    const Outcome outcome = readNMEA(folder.file("nothing"), {}, list);
    EXPECT_EQ(outcome.ending, Ending::NotOpened);
    EXPECT_EQ(outcome.error, std::errc::no_such_file_or_directory);
    EXPECT_THAT(list.calls, ElementsAre());
}

TEST(Driver, ReportsWhatCannotBeRead) {
    const TemporaryFolder folder;
    CallList list;
    const Outcome outcome = readNMEA(folder.path().string(), {}, list);
    EXPECT_EQ(outcome.ending, Ending::Unreadable);
    EXPECT_EQ(outcome.error, std::errc::is_a_directory);
    ASSERT_EQ(list.calls.size(), 1U);
    EXPECT_THAT(list.calls[0], ::testing::StartsWith("error cannot be read: "));
}

TEST(Driver, RefusesADeviceThatIsNoSerialLine) {
    for (const char *path : {"/dev/null", "/dev/zero"}) {
        CallList list;
        const Outcome outcome = readNMEA(path, {}, list);
        EXPECT_EQ(outcome.ending, Ending::NotOpened);
        EXPECT_EQ(outcome.problem, "cannot be opened: a device, but not a serial line");
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

TEST(Driver, AnInterruptEndsTheTransferOfALiveReceiver) {
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
        const Outcome outcome =
            readNMEA(receiver.path(), {}, list, {.wakeUp = wakeUp.descriptor()});
        EXPECT_EQ(outcome.ending, Ending::Interrupted);
        EXPECT_FALSE(outcome.error);
        ASSERT_EQ(list.trackPoints.size(), 10U) << piece;
        for (int i = 0; i < 10; ++i) {
            EXPECT_EQ(list.trackPoints[static_cast<std::size_t>(i)].point.time, noon + i);
        }
        EXPECT_EQ(list.calls.back(), "end 1");
        EXPECT_EQ(outcome.tally.badChecksum, 0);
    }
}

TEST(Driver, AReceiverThatHangsUpIsLostWithWhatItSentBeforeKept) {
    PlayedReceiver receiver;
    CallList list;
    Conversation conversation(receiver, list, 5);
    conversation.atEnd = [&] { receiver.hangUp(); };
    const Outcome outcome = readNMEA(receiver.path(), {}, list);
    EXPECT_EQ(outcome.ending, Ending::Lost);
    EXPECT_TRUE(outcome.error);
    EXPECT_EQ(list.trackPoints.size(), 10U);
    ASSERT_GE(list.calls.size(), 2U);
    EXPECT_EQ(list.calls.back(), "end 1");
    EXPECT_THAT(list.calls,
                ::testing::Contains(::testing::StartsWith("error the receiver was lost: ")));
}

TEST(Driver, SetsUpTheSerialLineAndRestoresIt) {
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
    DriverOptions options;
    options.baud = 38400;
    EXPECT_EQ(readNMEA(receiver.path(), options, list, {.wakeUp = wakeUp.descriptor()}).ending,
              Ending::Interrupted);
    EXPECT_EQ(::cfgetispeed(&during), static_cast<speed_t>(B38400));
    EXPECT_EQ(during.c_lflag & (ICANON | ECHO | ISIG), 0U);
    EXPECT_EQ(during.c_iflag & (ICRNL | IXON), 0U);

    termios after{};
    ASSERT_EQ(::tcgetattr(receiver.device(), &after), 0);
    EXPECT_EQ(::cfgetispeed(&after), ::cfgetispeed(&before));
    EXPECT_EQ(after.c_lflag, before.c_lflag);
    EXPECT_EQ(after.c_iflag, before.c_iflag);
}

TEST(Driver, RefusesARateThatThereIsNone) {
    PlayedReceiver receiver;
    DriverOptions options;
    options.baud = 4801;
    CallList list;
    const Outcome outcome = readNMEA(receiver.path(), options, list);
    EXPECT_EQ(outcome.ending, Ending::NotOpened);
    EXPECT_EQ(outcome.error, std::errc::invalid_argument);
}

TEST(Driver, KnowsTheUsualRates) {
    for (const long rate : {300L, 1200L, 2400L, 4800L, 9600L, 19200L, 38400L, 57600L, 115200L}) {
        EXPECT_TRUE(isBaudRate(rate)) << rate;
    }
    for (const long rate : {-1L, 0L, 1L, 4801L, 1'000'000'000'000L}) {
        EXPECT_FALSE(isBaudRate(rate)) << rate;
    }
}

TEST(Driver, ShowsALiveSourceAndNoFile) {
    std::string shown;
    LiveView::Clock::time_point time;
    // So long after the line before that each one is shown.
    const auto later = [&] { return time += LiveView::shortestInterval; };
    LiveView view([&](std::string_view bytes) { shown.append(bytes); }, later);
    const TemporaryFolder folder;
    CallList list;
    (void)readNMEA(folder.write("log", second(0)), {}, list, {.view = &view});
    EXPECT_EQ(shown, "");

    PlayedReceiver receiver;
    Conversation conversation(receiver, list, 1000);
    conversation.atEnd = [&] { receiver.hangUp(); };
    (void)readNMEA(receiver.path(), {}, list, {.view = &view});
    EXPECT_THAT(shown, ::testing::ContainsRegex("[1-9] points?, 3D fix, 48\\.[01]"));
}

TEST(Driver, ReadsTheDateOfAnOption) {
    EXPECT_EQ(dayOfOption("1970-01-01"), 0);
    EXPECT_EQ(dayOfOption("2024-02-29"), 19'782);
    for (const char *text :
         {"", "2024-02-30", "2024-13-01", "1969-12-31", "24-02-29", "2024/02/29", "2024-02-290",
          "2024-2-29", " 2024-02-2", "2024-02-2x", "20240-2-29"}) {
        EXPECT_FALSE(dayOfOption(text)) << text;
    }
}

} // namespace
} // namespace pelluvia::nmea
