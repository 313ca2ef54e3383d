// SPDX-License-Identifier: MIT

#include <tests/support/Process.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <string_view>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace pelluvia::testing {

namespace {

/// Both ends of a pipe or a terminal.
struct Ends {
    int ours = -1;
    int theirs = -1;
};

Ends makeInputPipe() {
    std::array<int, 2> ends{};
    EXPECT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
    return {.ours = ends[1], .theirs = ends[0]};
}

/// A pipe whose reading end is closed.
int makeBrokenPipe() {
    const Ends ends = makeInputPipe();
    ::close(ends.theirs);
    return ends.ours;
}

Ends makeTerminal() {
    const int ours = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    EXPECT_EQ(::grantpt(ours), 0);
    EXPECT_EQ(::unlockpt(ours), 0);
    std::array<char, 100> name{};
    EXPECT_EQ(::ptsname_r(ours, name.data(), name.size()), 0);
    return {.ours = ours, .theirs = ::open(name.data(), O_RDWR | O_NOCTTY | O_CLOEXEC)};
}

int makeMemoryFile() {
    return ::memfd_create("stream", MFD_CLOEXEC);
}

/// Everything from here to the end; a terminal ends with an error when its other side is closed.
std::string readToEnd(int descriptor) {
    std::string text;
    std::array<char, 4096> buffer{};
    for (;;) {
        const ssize_t got = ::read(descriptor, buffer.data(), buffer.size());
        if (got <= 0) {
            return text;
        }
        text.append(buffer.data(), static_cast<std::size_t>(got));
    }
}

void writeInput(int descriptor, std::string_view input) {
    while (!input.empty()) {
        const ssize_t written = ::write(descriptor, input.data(), input.size());
        if (written <= 0) {
            break; // the program did not want all of it
        }
        input.remove_prefix(static_cast<std::size_t>(written));
    }
}

/// What the new process needs, made before it is split off: afterwards only plain system calls are
/// safe.
struct Launch {
    std::vector<char *> arguments;
    std::vector<char *> environment;
    int input = -1;
    int output = -1;
    int errors = -1;
};

std::vector<std::string> environmentOf(const Run &how) {
    std::vector<std::string> result;
    for (const auto &[name, value] : how.environment) {
        result.push_back(name + "=" + value);
    }
    for (char **each = environ; *each != nullptr; ++each) {
        const std::string_view entry(*each);
        const auto isReplaced = [entry](const auto &pair) {
            return entry.starts_with(pair.first + "=");
        };
        if (std::none_of(how.environment.begin(), how.environment.end(), isReplaced)) {
            result.emplace_back(entry);
        }
    }
    return result;
}

std::vector<char *> pointersTo(std::vector<std::string> &texts) {
    std::vector<char *> result;
    for (std::string &text : texts) {
        result.push_back(text.data());
    }
    result.push_back(nullptr);
    return result;
}

[[noreturn]] void become(const std::string &program, const Run &how, const Launch &launch) {
    constexpr int cannotRun = 127;
    ::signal(SIGPIPE, SIG_DFL);
    ::dup2(launch.input, STDIN_FILENO);
    ::dup2(launch.output, STDOUT_FILENO);
    ::dup2(launch.errors, STDERR_FILENO);
    for (const int descriptor : how.closed) {
        ::close(descriptor);
    }
    if (how.fileSizeLimit) {
        const rlimit limit = {*how.fileSizeLimit, *how.fileSizeLimit};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    if (!how.folder.empty() && ::chdir(how.folder.c_str()) != 0) {
        ::_exit(cannotRun);
    }
    ::execve(program.c_str(), launch.arguments.data(), launch.environment.data());
    ::_exit(cannotRun);
}

int outputOf(const Run &how) {
    if (how.hasBrokenOutput) {
        return makeBrokenPipe();
    }
    return how.outputFile.empty()
               ? makeMemoryFile()
               : ::open(how.outputFile.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
}

std::string contentOf(int descriptor) {
    ::lseek(descriptor, 0, SEEK_SET);
    return readToEnd(descriptor);
}

} // namespace

Outcome run(const std::string &program, const Run &how) {
    std::vector<std::string> arguments = how.arguments;
    arguments.insert(arguments.begin(), program);
    std::vector<std::string> environment = environmentOf(how);
    const Ends input = makeInputPipe();
    const Ends terminal = how.hasTerminal ? makeTerminal() : Ends();
    const Launch launch{.arguments = pointersTo(arguments),
                        .environment = pointersTo(environment),
                        .input = input.theirs,
                        .output = outputOf(how),
                        .errors = how.hasTerminal ? terminal.theirs : makeMemoryFile()};

    const pid_t child = ::fork();
    if (child == 0) {
        become(program, how, launch);
    }
    EXPECT_GT(child, 0);
    ::close(input.theirs);
    const auto before = ::signal(SIGPIPE, SIG_IGN);
    writeInput(input.ours, how.input);
    ::signal(SIGPIPE, before);
    ::close(input.ours);

    Outcome outcome;
    if (how.hasTerminal) {
        ::close(terminal.theirs);
        outcome.errors = readToEnd(terminal.ours);
        ::close(terminal.ours);
    }
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    if (!how.hasTerminal) {
        outcome.errors = contentOf(launch.errors);
        ::close(launch.errors);
    }
    if (how.outputFile.empty() && !how.hasBrokenOutput) {
        outcome.output = contentOf(launch.output);
    }
    ::close(launch.output);
    return outcome;
}

} // namespace pelluvia::testing
