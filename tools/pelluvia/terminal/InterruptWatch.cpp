// SPDX-License-Identifier: MIT

#include <tools/pelluvia/terminal/InterruptWatch.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <ctime>
#include <sys/eventfd.h>
#include <unistd.h>

namespace pelluvia::host {

namespace {

constexpr std::array signals = {SIGINT, SIGTERM, SIGHUP};
constexpr std::chrono::milliseconds tick{100};
constexpr int mostTicks = static_cast<int>(InterruptWatch::patience / tick);

/// What the signal handlers work with; a handler is called with nothing but a number.
struct Watched {
    std::atomic<int> signal{0}; ///< the first that came
    std::atomic<int> descriptor{-1};
    std::atomic<bool> mayGiveUp{false};
    std::atomic<int> ticks{0}; ///< since the last headway, once a signal has come
    static_assert(std::atomic<int>::is_always_lock_free);

    // Changed only while no handler is installed.
    std::array<struct sigaction, signals.size()> former{};
    struct sigaction formerAlarm {};
    timer_t timer{};
    bool hasTimer = false;
};
Watched watched;

void startTicking() {
    if (watched.hasTimer) {
        const auto nanoseconds = std::chrono::nanoseconds(tick).count();
        const itimerspec every = {.it_interval = {.tv_sec = 0, .tv_nsec = nanoseconds},
                                  .it_value = {.tv_sec = 0, .tv_nsec = nanoseconds}};
        ::timer_settime(watched.timer, 0, &every, nullptr);
    }
}

void noteInterrupt(int signal) {
    const int formerError = errno;
    int none = 0;
    if (watched.signal.compare_exchange_strong(none, signal)) {
        startTicking();
    }
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = ::write(watched.descriptor, &one, sizeof one);
    errno = formerError;
}

/// Gives the signal back to who would have had it without us.
void giveUp(int signal) {
    for (std::size_t i = 0; i < signals.size(); ++i) {
        if (signals[i] == signal) {
            ::sigaction(signal, &watched.former[i], nullptr);
        }
    }
    static_cast<void>(::raise(signal));
}

void noteTick(int /*alarm*/) {
    const int formerError = errno;
    if (!watched.mayGiveUp) {
        watched.ticks = 0;
    } else if (++watched.ticks >= mostTicks) {
        giveUp(watched.signal);
    }
    errno = formerError;
}

void install(int signal, void (*handler)(int)) {
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    ::sigemptyset(&action.sa_mask);
    ::sigaction(signal, &action, nullptr);
}

} // namespace

InterruptWatch::InterruptWatch() : descriptor_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (descriptor_ < 0) {
        return;
    }
    watched.signal = 0;
    watched.mayGiveUp = false;
    watched.ticks = 0;
    watched.descriptor = descriptor_;
    struct sigevent event = {};
    event.sigev_notify = SIGEV_SIGNAL;
    event.sigev_signo = SIGALRM;
    watched.hasTimer = ::timer_create(CLOCK_MONOTONIC, &event, &watched.timer) == 0;
    ::sigaction(SIGALRM, nullptr, &watched.formerAlarm);
    install(SIGALRM, noteTick);
    for (std::size_t i = 0; i < signals.size(); ++i) {
        ::sigaction(signals[i], nullptr, &watched.former[i]);
        if (watched.former[i].sa_handler != SIG_IGN) {
            install(signals[i], noteInterrupt);
        }
    }
}

InterruptWatch::~InterruptWatch() {
    if (descriptor_ < 0) {
        return;
    }
    if (!isInterrupted()) {
        for (std::size_t i = 0; i < signals.size(); ++i) {
            ::sigaction(signals[i], &watched.former[i], nullptr);
        }
    }
    watched.mayGiveUp = false;
    if (watched.hasTimer) {
        ::timer_delete(watched.timer);
        watched.hasTimer = false;
    }
    ::sigaction(SIGALRM, &watched.formerAlarm, nullptr);
    watched.descriptor = -1;
    ::close(descriptor_);
}

bool InterruptWatch::isInterrupted() noexcept {
    return watched.signal.load(std::memory_order_relaxed) != 0;
}

void InterruptWatch::setMayGiveUp(bool mayGiveUp) noexcept {
    watched.ticks = 0;
    watched.mayGiveUp = mayGiveUp;
}

void InterruptWatch::noteHeadway() noexcept {
    watched.ticks.store(0, std::memory_order_relaxed);
}

} // namespace pelluvia::host
