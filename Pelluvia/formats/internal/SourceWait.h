// SPDX-License-Identifier: MIT

#pragma once

#include <functional>
#include <memory>
#include <stop_token>
#include <system_error>

namespace pelluvia::formats {

/// Waits until a source has something to read, and tells when that takes time. Ends the waiting
/// when a stop is requested, or when the host has made a descriptor of its own readable, which a
/// signal handler can do.
///
/// Threads: one at a time; a stop may be requested on any thread.
class SourceWait {
  public:
    enum class Result {
        Readable, ///< there is something, or the end, or a failure that reading will tell
        Ended,    ///< the host's descriptor is readable
        Stopped,  ///< a stop was requested
        Failed    ///< waiting failed
    };

    /// `endDescriptor` is borrowed; -1: there is none. `paused` is called before each time that
    /// waiting takes time; it may be empty.
    SourceWait(int endDescriptor, const std::stop_token &token, std::function<void()> paused);
    SourceWait(const SourceWait &) = delete;
    SourceWait &operator=(const SourceWait &) = delete;
    ~SourceWait();

    /// Waits for the descriptor; `error` is set on `Failed`.
    [[nodiscard]] Result wait(int descriptor, std::error_code &error) const;

  private:
    class StopSignal;

    int endDescriptor_;
    std::function<void()> paused_;
    std::unique_ptr<StopSignal> stopSignal_; ///< null where nobody can request a stop
};

} // namespace pelluvia::formats
