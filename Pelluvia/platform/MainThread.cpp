#include <Pelluvia/platform/MainThread.h>

#include <cstdint>
#include <deque>
#include <mutex>
#include <sys/eventfd.h>
#include <unistd.h>

namespace pelluvia::mainThread {

namespace {

/// The messages that wait for the main thread of this process.
class Queue {
  public:
    void post(Message message) {
        // The lock also covers the scheduler's call, so that the order of posting is the order in
        // which the scheduler sees the messages. It is recursive for schedulers that post.
        const std::scoped_lock lock(mutex_);
        if (scheduler_) {
            scheduler_(std::move(message));
            return;
        }
        messages_.push_back(std::move(message));
        if (messages_.size() == 1) {
            signal();
        }
    }

    std::size_t drain() {
        std::size_t left = size();
        std::size_t ran = 0;
        for (; left != 0; --left) {
            const Message message = take();
            if (!message) {
                break; // another thread, or a nested drain, was faster
            }
            message();
            ++ran;
        }
        return ran;
    }

    [[nodiscard]] int fileDescriptor() const { return event_; }

    void setScheduler(Scheduler scheduler) {
        const std::scoped_lock lock(mutex_);
        scheduler_ = std::move(scheduler);
        while (scheduler_ && !messages_.empty()) {
            scheduler_(takeLocked());
        }
    }

  private:
    std::size_t size() {
        const std::scoped_lock lock(mutex_);
        return messages_.size();
    }

    Message take() {
        const std::scoped_lock lock(mutex_);
        return messages_.empty() ? Message() : takeLocked();
    }

    Message takeLocked() {
        Message message = std::move(messages_.front());
        messages_.pop_front();
        if (messages_.empty()) {
            unsignal();
        }
        return message;
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
    Scheduler scheduler_;
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
