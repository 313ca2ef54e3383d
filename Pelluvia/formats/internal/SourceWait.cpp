// SPDX-License-Identifier: MIT

#include <Pelluvia/formats/internal/SourceWait.h>

#include <array>
#include <cerrno>
#include <utility>

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace pelluvia::formats {

namespace {

/// A descriptor that becomes, and stays, readable when it is raised.
class Event {
  public:
    // Where the system has no descriptor left, there is none (-1), and nobody is woken by it.
    Event() noexcept : descriptor_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}
    Event(const Event &) = delete;
    Event &operator=(const Event &) = delete;
    ~Event() {
        if (descriptor_ >= 0) {
            ::close(descriptor_);
        }
    }

    [[nodiscard]] int descriptor() const noexcept { return descriptor_; }
    void raise() const noexcept { ::eventfd_write(descriptor_, 1); }

  private:
    int descriptor_;
};

} // namespace

/// The event of a stop that is requested, on whatever thread.
class SourceWait::StopSignal {
  public:
    explicit StopSignal(const std::stop_token &token) : callback_(token, Raise{event_}) {}

    [[nodiscard]] int descriptor() const noexcept { return event_.descriptor(); }

  private:
    struct Raise {
        const Event &event;
        void operator()() const noexcept { event.raise(); }
    };

    Event event_; // before the callback, which must be gone when it goes
    std::stop_callback<Raise> callback_;
};

SourceWait::SourceWait(int endDescriptor, const std::stop_token &token,
                       std::function<void()> paused)
    : endDescriptor_(endDescriptor),
      paused_(std::move(paused)),
      stopSignal_(token.stop_possible() ? std::make_unique<StopSignal>(token) : nullptr) {}

SourceWait::~SourceWait() = default;

SourceWait::Result SourceWait::wait(int descriptor, std::error_code &error) const {
    // `poll` passes over negative descriptors; reading tells what is wrong with this one.
    if (descriptor < 0) {
        return Result::Readable;
    }
    const int stop = stopSignal_ != nullptr ? stopSignal_->descriptor() : -1;
    std::array<pollfd, 3> asked = {pollfd{.fd = descriptor, .events = POLLIN, .revents = 0},
                                   pollfd{.fd = endDescriptor_, .events = POLLIN, .revents = 0},
                                   pollfd{.fd = stop, .events = POLLIN, .revents = 0}};
    constexpr int untilThereIsSomething = -1;
    int timeout = paused_ ? 0 : untilThereIsSomething;
    for (;;) {
        const int ready = ::poll(asked.data(), asked.size(), timeout);
        if (ready > 0) {
            break;
        }
        if (ready == 0) {
            paused_();
            timeout = untilThereIsSomething;
        } else if (errno != EINTR && errno != EAGAIN) {
            error = {errno, std::generic_category()};
            return Result::Failed;
        }
    }
    if (asked[2].revents != 0) {
        return Result::Stopped;
    }
    return asked[1].revents != 0 ? Result::Ended : Result::Readable;
}

} // namespace pelluvia::formats
