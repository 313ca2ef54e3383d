// SPDX-License-Identifier: MIT

#include <Pelluvia/system/MainThread.h>

#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <sys/eventfd.h>
#include <unistd.h>
#include <utility>

namespace pelluvia::mainThread {

namespace {

/// The messages that wait for the main thread of this process.
class Queue {
  public:
    void post(Message message) {
        if (!message) {
            return;
        }
        // The lock also covers the scheduler's call, so that the order of posting is the order in
        // which the scheduler sees the messages. It is recursive for schedulers that post.
        const std::scoped_lock lock(mutex_);
        if (scheduler_) {
            passOn(std::move(message));
            return;
        }
        messages_.push_back(std::move(message));
        ++posted_;
        if (messages_.size() == 1) {
            signal();
        }
    }

    std::size_t drain() {
        const std::uint64_t end = posted();
        std::size_t ran = 0;
        while (const Message message = takeBefore(end)) {
            message();
            ++ran;
        }
        return ran;
    }

    [[nodiscard]] int fileDescriptor() const { return event_; }

    void setScheduler(Scheduler scheduler) {
        auto replacement =
            scheduler ? std::make_shared<const Scheduler>(std::move(scheduler)) : nullptr;
        // The old scheduler goes with `replacement`, behind the lock.
        const std::scoped_lock lock(mutex_);
        scheduler_.swap(replacement);
        while (scheduler_ && !messages_.empty()) {
            passOn(takeFirst());
        }
    }

  private:
    std::uint64_t posted() {
        const std::scoped_lock lock(mutex_);
        return posted_;
    }

    /// The first message, if it was among the first `end` that were ever queued. Another thread or
    /// a nested drain may have been faster, and newer messages may wait.
    Message takeBefore(std::uint64_t end) {
        const std::scoped_lock lock(mutex_);
        return posted_ - messages_.size() < end ? takeFirst() : Message();
    }

    // The functions below are called with the lock held.

    Message takeFirst() {
        Message message = std::move(messages_.front());
        messages_.pop_front();
        if (messages_.empty()) {
            unsignal();
        }
        return message;
    }

    void passOn(Message message) const {
        const auto scheduler = scheduler_; // lives on if it replaces itself
        (*scheduler)(std::move(message));
    }

    // The counter of the descriptor is 1 while messages wait and 0 otherwise.
    void signal() const {
        const std::uint64_t one = 1;
        [[maybe_unused]] const ssize_t written = ::write(event_, &one, sizeof one);
    }
    void unsignal() const {
        std::uint64_t count = 0;
        [[maybe_unused]] const ssize_t got = ::read(event_, &count, sizeof count);
    }

    std::recursive_mutex mutex_;
    std::deque<Message> messages_;
    std::uint64_t posted_ = 0; // how many messages were ever queued
    std::shared_ptr<const Scheduler> scheduler_;
    int event_ = ::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
};

/// Never destroyed: messages may be posted while the process ends.
Queue &queue() {
    static auto &instance = *new Queue; // NOLINT(cppcoreguidelines-owning-memory)
    return instance;
}

} // namespace

void post(Message message) {
    queue().post(std::move(message));
}

std::size_t drain() {
    return queue().drain();
}

int fileDescriptor() {
    return queue().fileDescriptor();
}

void setScheduler(Scheduler scheduler) {
    queue().setScheduler(std::move(scheduler));
}

} // namespace pelluvia::mainThread
