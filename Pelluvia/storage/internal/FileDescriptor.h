// SPDX-License-Identifier: MIT

#pragma once

#include <unistd.h>
#include <utility>

namespace pelluvia::storage {

/// Owns an open file descriptor, or none (-1).
class FileDescriptor {
  public:
    FileDescriptor() = default;
    explicit FileDescriptor(int number) noexcept : number_(number) {}
    FileDescriptor(FileDescriptor &&other) noexcept : number_(std::exchange(other.number_, -1)) {}
    FileDescriptor &operator=(FileDescriptor &&other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }
    ~FileDescriptor() {
        if (isOpen()) {
            ::close(number_);
        }
    }

    [[nodiscard]] int number() const noexcept { return number_; }
    [[nodiscard]] bool isOpen() const noexcept { return number_ >= 0; }

  private:
    int number_ = -1;
};

} // namespace pelluvia::storage
