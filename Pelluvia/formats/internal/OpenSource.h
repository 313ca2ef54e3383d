// SPDX-License-Identifier: MIT

#pragma once

#include <string>
#include <system_error>

namespace pelluvia::formats {

/// A file, pipe or device that is open for reading while this object lives.
///
/// Threads: one at a time.
class OpenSource {
  public:
    /// Opens the path; `error` says why that failed, a path that holds a NUL included. Never waits:
    /// not for the writer of a named pipe, which `SourceWait` waits for, nor for a modem. A
    /// terminal does not become the one that controls the process.
    OpenSource(const std::string &path, std::error_code &error);
    OpenSource(OpenSource &&other) noexcept;
    OpenSource &operator=(OpenSource &&) = delete;
    ~OpenSource();

    /// The descriptor, or -1.
    [[nodiscard]] int descriptor() const noexcept { return descriptor_; }

  private:
    int descriptor_ = -1;
};

} // namespace pelluvia::formats
