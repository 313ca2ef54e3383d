// SPDX-License-Identifier: MIT

#include <tools/pelluvia/files/SignalCleanup.h>

#include <array>
#include <climits>
#include <cstring>
#include <unistd.h>

namespace pelluvia::host {

namespace {

/// Those that end a process from outside; SIGPIPE and SIGXFSZ the program ignores.
constexpr std::array endingSignals = {SIGHUP,  SIGINT,  SIGQUIT,   SIGTERM, SIGALRM, SIGUSR1,
                                      SIGUSR2, SIGXCPU, SIGVTALRM, SIGPROF, SIGPOLL, SIGPWR};

/// The paths that the signal handler removes; empty for none. A signal handler has nothing else to
/// find them by. Changed only while the signals are blocked.
using PathToRemove = std::array<char, PATH_MAX>;
std::array<PathToRemove, RemovalOnSignal::most> pathsToRemove{};

extern "C" void removeAndEnd(int signal) {
    for (const PathToRemove &path : pathsToRemove) {
        if (path[0] != '\0') {
            ::unlink(path.data());
        }
    }
    // The handler was installed to run once; this time the signal does what it always does.
    static_cast<void>(::raise(signal));
}

sigset_t endingSignalSet() {
    sigset_t set;
    ::sigemptyset(&set);
    for (const int signal : endingSignals) {
        ::sigaddset(&set, signal);
    }
    return set;
}

/// Signals that are ignored stay ignored, as `nohup` wants it.
void handleEndingSignals() {
    struct sigaction action = {};
    action.sa_handler = removeAndEnd;
    action.sa_mask = endingSignalSet();
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    for (const int signal : endingSignals) {
        struct sigaction before = {};
        ::sigaction(signal, nullptr, &before);
        if (before.sa_handler == SIG_DFL) {
            ::sigaction(signal, &action, nullptr);
        }
    }
}

/// Where a path can be put for the signal handler; null when all places are taken.
char *freePlace() {
    for (PathToRemove &path : pathsToRemove) {
        if (path[0] == '\0') {
            return path.data();
        }
    }
    return nullptr;
}

} // namespace

EndingSignalsBlocked::EndingSignalsBlocked() noexcept {
    const sigset_t set = endingSignalSet();
    ::pthread_sigmask(SIG_BLOCK, &set, &before_);
}

EndingSignalsBlocked::~EndingSignalsBlocked() {
    ::pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

bool RemovalOnSignal::hasRoomFor(const std::string &path) noexcept {
    return path.size() < PATH_MAX && freePlace() != nullptr;
}

RemovalOnSignal::RemovalOnSignal(const std::string &path) noexcept : path_(freePlace()) {
    const EndingSignalsBlocked blocked;
    std::memcpy(path_, path.c_str(), path.size() + 1);
    handleEndingSignals();
}

RemovalOnSignal::~RemovalOnSignal() {
    const EndingSignalsBlocked blocked;
    *path_ = '\0';
}

} // namespace pelluvia::host
