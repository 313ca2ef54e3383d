// SPDX-License-Identifier: MIT

#pragma once

#include <fcntl.h>
#include <string>
#include <unistd.h>

namespace pelluvia::testing {

/// A file descriptor for reading, closed at the end.
class OpenFile {
  public:
    explicit OpenFile(const std::string &path)
        : descriptor_(::open(path.c_str(), O_RDONLY | O_CLOEXEC)) {}
    OpenFile(const OpenFile &) = delete;
    OpenFile &operator=(const OpenFile &) = delete;
    ~OpenFile() {
        if (descriptor_ >= 0) {
            ::close(descriptor_);
        }
    }

    /// -1 when it could not be opened.
    [[nodiscard]] int descriptor() const noexcept { return descriptor_; }

  private:
    int descriptor_;
};

} // namespace pelluvia::testing
