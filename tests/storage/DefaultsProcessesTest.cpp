// SPDX-License-Identifier: MIT

#include <tests/storage/OwnDefaults.h>
#include <tests/storage/Probe.h>

#include <Pelluvia/storage/internal/DefaultsFile.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <gmock/gmock.h>
#include <random>
#include <set>
#include <spawn.h>
#include <string>
#include <sys/file.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace pelluvia {
namespace {

class DefaultsOfProcesses : public testing::OwnDefaults {
  protected:
    UserDefaults defaults = UserDefaults::standardUserDefaults();
};

TEST_F(DefaultsOfProcesses, TwoThatWriteAtTheSameTimeLoseNothing) {
    constexpr int count = 1000;
    const auto write = [this](const char *prefix) {
        const testing::Outcome outcome =
            testing::probe({"write", defaults.folder(), prefix, std::to_string(count)});
        EXPECT_EQ(outcome.status, 0);
        EXPECT_EQ(outcome.errors, "");
    };
    std::thread other(write, "b");
    write("a");
    other.join();
    const std::string content = testing::readFile(defaultsFile());
    for (const char *prefix : {"a", "b"}) {
        for (int at = 0; at < count; ++at) {
            const std::string number = std::to_string(at);
            const std::string line =
                std::string("\n").append(prefix).append(number).append("=integer:") + number + '\n';
            EXPECT_NE(content.find(line), std::string::npos) << line;
        }
    }
    EXPECT_EQ(std::count(content.begin(), content.end(), '\n'), 2 * count + 1);
}

TEST_F(DefaultsOfProcesses, OneThatIsForkedDuringAWriteHoldsUpNobody) {
    std::array<int, 2> ends{};
    ASSERT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
    pid_t child = -1;
    std::string problem;
    const int error = storage::DefaultsFile(defaults.folder())
                          .update(
                              [&](storage::DefaultsText & /*entries*/) {
                                  child = ::fork();
                                  if (child == 0) { // lives until the test closes the pipe
                                      ::close(ends[1]);
                                      char byte = 0;
                                      ::_exit(static_cast<int>(::read(ends[0], &byte, 1)));
                                  }
                              },
                              problem);
    EXPECT_EQ(error, 0);
    EXPECT_EQ(problem, "");
    const int lock = ::open(defaultsFile("defaults.lock").c_str(), O_RDWR | O_CLOEXEC);
    EXPECT_EQ(::flock(lock, LOCK_EX | LOCK_NB), 0);
    ::close(lock);
    ::close(ends[1]);
    ::close(ends[0]);
    EXPECT_EQ(::waitpid(child, nullptr, 0), child);
}

/// A probe that writes, and is killed at an instant that nobody chose.
class DoomedWriter {
  public:
    DoomedWriter(const std::string &folder, const std::string &prefix) {
        std::array<int, 2> ends{};
        EXPECT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
        posix_spawn_file_actions_t actions;
        ::posix_spawn_file_actions_init(&actions);
        ::posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
        std::array<std::string, 5> texts = {PELLUVIA_STORAGE_PROBE, "write", folder, prefix,
                                            "1000000"};
        std::array<char *, 6> arguments{};
        for (std::size_t at = 0; at < texts.size(); ++at) {
            arguments.at(at) = texts.at(at).data();
        }
        EXPECT_EQ(::posix_spawn(&process_, PELLUVIA_STORAGE_PROBE, &actions, nullptr,
                                arguments.data(), environ),
                  0);
        ::posix_spawn_file_actions_destroy(&actions);
        ::close(ends[1]);
        output_ = ends[0];
    }
    DoomedWriter(const DoomedWriter &) = delete;
    DoomedWriter &operator=(const DoomedWriter &) = delete;
    ~DoomedWriter() { ::close(output_); }

    /// Waits for some entries, lets it go on for some microseconds, kills it, and returns how many
    /// entries it said it had set.
    int killAfter(int entries, unsigned microseconds) {
        std::string said;
        while (std::count(said.begin(), said.end(), '\n') < entries && readMore(said)) {
        }
        ::usleep(microseconds);
        ::kill(process_, SIGKILL);
        int status = 0;
        EXPECT_EQ(::waitpid(process_, &status, 0), process_);
        EXPECT_TRUE(WIFSIGNALED(status));
        while (readMore(said)) {
        }
        return static_cast<int>(std::count(said.begin(), said.end(), '\n'));
    }

  private:
    bool readMore(std::string &text) const {
        std::array<char, 4096> buffer{};
        const ssize_t got = ::read(output_, buffer.data(), buffer.size());
        if (got > 0) {
            text.append(buffer.data(), static_cast<std::size_t>(got));
        }
        return got > 0;
    }

    pid_t process_ = -1;
    int output_ = -1;
};

TEST_F(DefaultsOfProcesses, OneThatIsKilledWhileItWritesLeavesAWholeFile) {
    // PELLUVIA_TEST_KILLS=300 for a long look.
    const char *const wanted = std::getenv("PELLUVIA_TEST_KILLS"); // NOLINT(concurrency-mt-unsafe)
    const int kills = wanted != nullptr ? std::atoi(wanted) : 20;  // NOLINT(cert-err34-c)
    std::mt19937 random(std::random_device{}());
    std::uniform_int_distribution<int> entries(0, 5);
    std::uniform_int_distribution<unsigned> pause(0, 4000);
    for (int kill = 0; kill < kills; ++kill) {
        const std::string prefix = std::to_string(kill) + "/";
        DoomedWriter writer(defaults.folder(), prefix);
        const int said = writer.killAfter(entries(random), pause(random));
        for (int at = 0; at < said; ++at) {
            EXPECT_EQ(defaults.integerForKey(prefix + std::to_string(at)), at) << kill;
        }
    }
    defaults.setObject("after", "all");
    EXPECT_EQ(defaults.stringForKey("all"), "after");
    EXPECT_THAT(log.lines, ::testing::IsEmpty());
    std::set<std::string> left;
    for (const auto &entry : std::filesystem::directory_iterator(defaults.folder())) {
        left.insert(entry.path().filename());
    }
    EXPECT_THAT(left, ::testing::ElementsAre("defaults.ini", "defaults.lock"));
}

} // namespace
} // namespace pelluvia
