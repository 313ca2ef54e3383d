// SPDX-License-Identifier: MIT

#include <Pelluvia/system/OutputFile.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <pthread.h>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <tests/support/TemporaryFolder.h>
#include <thread>
#include <unistd.h>

namespace pelluvia {
namespace {

using testing::readFile;
using testing::TemporaryFolder;

std::unique_ptr<OutputFile> opened(const std::string &path) {
    std::error_code error = std::make_error_code(std::errc::io_error);
    auto file = OutputFile::open(path, error);
    EXPECT_FALSE(error) << error.message();
    EXPECT_NE(file, nullptr);
    return file;
}

/// Bytes in which no part looks like another.
std::string patterned(std::size_t size) {
    std::string text;
    text.reserve(size + 24);
    for (std::size_t number = 0; text.size() < size; ++number) {
        text += std::to_string(number) + ",";
    }
    text.resize(size);
    return text;
}

TEST(OutputFile, WritesWhatItIsGivenAndClosesWithoutFailure) {
    const TemporaryFolder folder;
    const auto file = opened(folder.file("a"));
    file->write("one ");
    file->write("");
    file->write({});
    file->write("two");
    EXPECT_FALSE(file->close());
    EXPECT_FALSE(file->failure());
    EXPECT_EQ(readFile(folder.file("a")), "one two");
}

TEST(OutputFile, ReplacesAnOlderFile) {
    const TemporaryFolder folder;
    const std::string path = folder.write("a", "much longer than the new content");
    EXPECT_FALSE(opened(path)->close());
    EXPECT_EQ(readFile(path), "");
}

TEST(OutputFile, MakesFilesWithTheModeThatTheUmaskLeaves) {
    const TemporaryFolder folder;
    const mode_t before = ::umask(027);
    EXPECT_FALSE(opened(folder.file("a"))->close());
    ::umask(before);
    struct stat status = {};
    ASSERT_EQ(::stat(folder.file("a").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0640U);
}

TEST(OutputFile, ClosesItselfWhenItGoes) {
    const TemporaryFolder folder;
    opened(folder.file("a"))->write("kept");
    EXPECT_EQ(readFile(folder.file("a")), "kept");
}

TEST(OutputFile, WritesOfAnySizeComeOutWhole) {
    const TemporaryFolder folder;
    constexpr std::size_t buffer = 256 * 1024;
    for (const std::size_t size : {buffer - 1, buffer, buffer + 1, 3 * buffer + 5}) {
        const std::string text = patterned(size);
        const auto file = opened(folder.file("a"));
        file->write(text);
        file->write("|");
        file->write(text);
        EXPECT_FALSE(file->close());
        EXPECT_TRUE(readFile(folder.file("a")) == text + "|" + text) << size;
    }
}

TEST(OutputFile, ReservationsAndWritesMayAlternate) {
    const TemporaryFolder folder;
    const auto file = opened(folder.file("a"));
    const std::string text = patterned(OutputFile::largestReservation);
    std::string expected;
    for (std::size_t round = 0; round < 100; ++round) { // several times the buffer
        const std::size_t used = round * 163 % (OutputFile::largestReservation + 1);
        char *position = file->reserve(OutputFile::largestReservation);
        std::memset(position, '#', OutputFile::largestReservation); // all of it may be used
        std::memcpy(position, text.data(), used);
        file->commit(position + used);
        file->write(";");
        expected += text.substr(0, used) + ";";
    }
    (void)file->reserve(10); // nothing is committed, nothing comes of it
    EXPECT_FALSE(file->close());
    EXPECT_TRUE(readFile(folder.file("a")) == expected);
}

TEST(OutputFile, AReservationMayFillTheBufferToItsLastByte) {
    const TemporaryFolder folder;
    const auto file = opened(folder.file("a"));
    const std::string text = patterned(256 * 1024 - OutputFile::largestReservation);
    file->write(text);
    char *position = file->reserve(OutputFile::largestReservation);
    std::memset(position, '#', OutputFile::largestReservation);
    file->commit(position + OutputFile::largestReservation);
    file->write("end");
    EXPECT_FALSE(file->close());
    EXPECT_TRUE(readFile(folder.file("a")) ==
                text + std::string(OutputFile::largestReservation, '#') + "end");
}

TEST(OutputFile, FlushMakesTheContentVisible) {
    const TemporaryFolder folder;
    const auto file = opened(folder.file("a"));
    file->write("visible");
    EXPECT_EQ(readFile(folder.file("a")), "");
    file->flush();
    EXPECT_EQ(readFile(folder.file("a")), "visible");
}

TEST(OutputFile, SaysWhyAFileCannotBeOpened) {
    const TemporaryFolder folder;
    const struct {
        std::string path;
        std::errc reason;
    } rows[] = {
        {folder.file("missing/a"), std::errc::no_such_file_or_directory},
        {folder.path().string(), std::errc::is_a_directory},
        {folder.write("file", "") + "/a", std::errc::not_a_directory},
        {"", std::errc::no_such_file_or_directory},
        {folder.file(std::string(300, 'x')), std::errc::filename_too_long},
        {folder.file(std::string_view("a\0b", 3)), std::errc::invalid_argument},
    };
    for (const auto &row : rows) {
        std::error_code error;
        EXPECT_EQ(OutputFile::open(row.path, error), nullptr) << row.path;
        EXPECT_EQ(error, row.reason) << row.path << ": " << error.message();
    }
    EXPECT_FALSE(std::filesystem::exists(folder.file("a"))); // not the path up to the NUL
}

TEST(OutputFile, RemembersAFullDisk) {
    if (!std::filesystem::exists("/dev/full")) {
        GTEST_SKIP() << "the system has no /dev/full";
    }
    const auto file = opened("/dev/full");
    file->write("a");
    EXPECT_FALSE(file->failure()); // nothing was written yet
    file->flush();
    EXPECT_EQ(file->failure(), std::errc::no_space_on_device);
    file->write(patterned(1'000'000)); // thrown away
    char *position = file->reserve(10);
    file->commit(position);
    EXPECT_EQ(file->close(), std::errc::no_space_on_device);
    EXPECT_EQ(file->failure(), std::errc::no_space_on_device);
}

TEST(OutputFile, TellsOfAFailureThatOnlyClosingMeets) {
    if (!std::filesystem::exists("/dev/full")) {
        GTEST_SKIP() << "the system has no /dev/full";
    }
    const auto file = opened("/dev/full");
    file->write("a");
    EXPECT_EQ(file->close(), std::errc::no_space_on_device);
    EXPECT_EQ(file->close(), std::errc::no_space_on_device);
}

TEST(OutputFile, ThrowsAwayWhatIsWrittenAfterClosing) {
    const TemporaryFolder folder;
    const auto file = opened(folder.file("a"));
    file->write("before");
    EXPECT_FALSE(file->close());
    file->write(patterned(1'000'000));
    file->flush();
    EXPECT_FALSE(file->close());
    EXPECT_EQ(readFile(folder.file("a")), "before");
}

/// Limits the size of the files that this process writes, while it lives.
class FileSizeLimit {
  public:
    explicit FileSizeLimit(rlim_t size) {
        ::getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit limit = {size, before_.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        oldHandler_ = std::signal(SIGXFSZ, SIG_IGN); // a failure instead of the end
    }
    FileSizeLimit(const FileSizeLimit &) = delete;
    FileSizeLimit &operator=(const FileSizeLimit &) = delete;
    ~FileSizeLimit() {
        ::setrlimit(RLIMIT_FSIZE, &before_);
        (void)std::signal(SIGXFSZ, oldHandler_);
    }

  private:
    rlimit before_ = {};
    void (*oldHandler_)(int) = nullptr;
};

// The second block meets the limit half way: the system writes a part of it, then nothing.
TEST(OutputFile, GoesOnAfterAShortWriteAndRemembersWhatStopsIt) {
    const TemporaryFolder folder;
    const std::string text = patterned(600'000);
    const auto file = opened(folder.file("a"));
    {
        const FileSizeLimit limit(400'000);
        file->write(text);
        EXPECT_EQ(file->close(), std::errc::file_too_large);
    }
    EXPECT_TRUE(readFile(folder.file("a")) == text.substr(0, 400'000));
}

std::atomic<int> interruptions = 0;

// A pipe takes little at a time, and a signal may come at any moment of a write: the writer meets
// short and interrupted writes in some order, and all bytes must arrive all the same.
TEST(OutputFile, SurvivesSignals) {
    const TemporaryFolder folder;
    const std::string path = folder.file("pipe");
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    const int reader = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    ASSERT_GE(reader, 0);
    ASSERT_EQ(::fcntl(reader, F_SETFL, 0), 0);

    struct sigaction action = {};
    struct sigaction before = {};
    action.sa_handler = [](int) { ++interruptions; }; // without SA_RESTART
    ASSERT_EQ(::sigaction(SIGUSR1, &action, &before), 0);

    const std::string text = patterned(2'000'000);
    std::error_code failure;
    auto file = opened(path); // the reader reads until this is closed
    std::thread writer([&] {
        file->write(text);
        failure = file->close();
    });
    std::string received;
    std::array<char, 3000> piece;
    while (received.size() != text.size()) {
        (void)::pthread_kill(writer.native_handle(), SIGUSR1);
        const ssize_t count = ::read(reader, piece.data(), piece.size());
        if (count <= 0) {
            break;
        }
        received.append(piece.data(), static_cast<std::size_t>(count));
    }
    writer.join();
    ::close(reader);
    ::sigaction(SIGUSR1, &before, nullptr);
    EXPECT_FALSE(failure) << failure.message();
    EXPECT_TRUE(received == text);
    EXPECT_GT(interruptions, 0);
}

// Whoever the host shares its standard output with may have made it not to block.
TEST(OutputFile, WaitsForADescriptorThatDoesNotBlock) {
    std::array<int, 2> ends = {};
    ASSERT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
    ASSERT_EQ(::fcntl(ends[1], F_SETFL, O_NONBLOCK), 0);
    const std::string text = patterned(1'000'000); // more than a pipe takes
    std::error_code failure;
    std::thread writer([&] {
        const auto file = opened("/dev/fd/" + std::to_string(ends[1]));
        ::close(ends[1]);
        file->write(text);
        failure = file->close();
    });
    std::string received;
    std::array<char, 3000> piece;
    ssize_t count = 0;
    while ((count = ::read(ends[0], piece.data(), piece.size())) > 0) {
        received.append(piece.data(), static_cast<std::size_t>(count));
    }
    writer.join();
    ::close(ends[0]);
    EXPECT_FALSE(failure) << failure.message();
    EXPECT_TRUE(received == text);
}

TEST(OutputFile, RemembersAPipeWithoutAReader) {
    const TemporaryFolder folder;
    const std::string path = folder.file("pipe");
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    const int reader = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    ASSERT_GE(reader, 0);
    const auto file = opened(path);
    ::close(reader);
    auto *const before = std::signal(SIGPIPE, SIG_IGN);
    file->write("nobody reads this");
    EXPECT_EQ(file->close(), std::errc::broken_pipe);
    (void)std::signal(SIGPIPE, before);
}

} // namespace
} // namespace pelluvia
