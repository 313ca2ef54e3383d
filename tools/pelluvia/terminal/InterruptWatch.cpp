#include <tools/pelluvia/terminal/InterruptWatch.h>

#include <atomic>
#include <cerrno>
#include <cstdint>
#include <sys/eventfd.h>
#include <unistd.h>

namespace pelluvia::host {

namespace {

// A signal handler is called with nothing but a number.
std::atomic<int> watchedDescriptor{-1};
static_assert(std::atomic<int>::is_always_lock_free);

void noteInterrupt(int /*signal*/) {
    const int formerError = errno;
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = ::write(watchedDescriptor, &one, sizeof one);
    errno = formerError;
}

} // namespace

InterruptWatch::InterruptWatch() : descriptor_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (descriptor_ < 0) {
        return;
    }
    watchedDescriptor = descriptor_;
    struct sigaction noting = {};
    noting.sa_handler = noteInterrupt;
    noting.sa_flags = SA_RESTART;
    ::sigemptyset(&noting.sa_mask);
    for (std::size_t i = 0; i < signals.size(); ++i) {
        ::sigaction(signals[i], nullptr, &former_[i]);
        if (former_[i].sa_handler != SIG_IGN) {
            ::sigaction(signals[i], &noting, nullptr);
        }
    }
}

InterruptWatch::~InterruptWatch() {
    if (descriptor_ < 0) {
        return;
    }
    for (std::size_t i = 0; i < signals.size(); ++i) {
        ::sigaction(signals[i], &former_[i], nullptr);
    }
    watchedDescriptor = -1;
    ::close(descriptor_);
}

} // namespace pelluvia::host
