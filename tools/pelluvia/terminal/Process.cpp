// SPDX-License-Identifier: MIT

#include <tools/pelluvia/terminal/Process.h>

#include <tools/pelluvia/terminal/Messages.h>

#include <Pelluvia/system/Log.h>
#include <Pelluvia/system/MainThread.h>

#include <clocale>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace pelluvia::host {

namespace {

/// A closed standard descriptor would be given to the next file that is opened, and messages would
/// land in it. Opened the wrong way round, its use still fails.
void takeStandardDescriptors() {
    for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (::fcntl(standard, F_GETFD) < 0) {
            const int flags = standard == STDIN_FILENO ? O_WRONLY : O_RDONLY;
            // The lowest number that is free, which is this one.
            [[maybe_unused]] const int taken = ::open("/dev/null", flags);
        }
    }
}

} // namespace

void prepareProcess() {
    takeStandardDescriptors();
    // None of these can fail for the values given; without a locale the messages stay English.
    static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
    static_cast<void>(std::signal(SIGXFSZ, SIG_IGN));
    static_cast<void>(std::setlocale(LC_MESSAGES, "")); // NOLINT(concurrency-mt-unsafe): one thread
    mainThread::setScheduler([](const mainThread::Message &message) { message(); });
}

void showLogLines() {
    setLogSink([](std::string_view line) { say("log: " + std::string(line)); });
}

} // namespace pelluvia::host
