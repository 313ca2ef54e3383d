// SPDX-License-Identifier: MIT

#pragma once

#include <unistd.h>
#include <utility>

namespace pelluvia::host {

/// Owns an open file descriptor, or none (-1).
class Descriptor {
  public:
    Descriptor() = default;
    explicit Descriptor(int number) noexcept : number_(number) {}
    Descriptor(Descriptor &&other) noexcept : number_(std::exchange(other.number_, -1)) {}
    Descriptor &operator=(Descriptor &&other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }
    ~Descriptor() {
        if (number_ >= 0) {
            ::close(number_);
        }
    }

    [[nodiscard]] int number() const noexcept { return number_; }
    [[nodiscard]] bool isOpen() const noexcept { return number_ >= 0; }

  private:
    int number_ = -1;
};

} // namespace pelluvia::host
