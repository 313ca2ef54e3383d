// SPDX-License-Identifier: MIT

#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace pelluvia {

/// A copy of a short text, as long as any sensible number or time, that waits to be read.
class ShortText {
  public:
    static constexpr std::size_t capacity = 39;

    void clear() noexcept { size_ = 0; }

    /// Keeps a copy of the text; false when it is longer than the capacity (or empty), and must be
    /// read at once: then nothing waits.
    [[nodiscard]] bool keep(std::string_view text) noexcept {
        if (text.empty() || text.size() > capacity) {
            size_ = 0;
            return false;
        }
        copy(text.data(), text.size());
        size_ = static_cast<std::uint8_t>(text.size());
        return true;
    }

    /// Empty when nothing waits.
    [[nodiscard]] std::string_view text() const noexcept { return {bytes_.data(), size_}; }

  private:
    /// A few moves of known size, of which the last covers some bytes again: several are kept for
    /// every point of a file, and a call takes longer than these copies.
    void copy(const char *from, std::size_t size) noexcept {
        if (size > 32) {
            std::memcpy(bytes_.data(), from, size);
        } else if (size >= 16) {
            copyEnds<16>(from, size);
        } else if (size >= 8) {
            copyEnds<8>(from, size);
        } else if (size >= 4) {
            copyEnds<4>(from, size);
        } else {
            for (std::size_t i = 0; i < size; ++i) {
                bytes_[i] = from[i];
            }
        }
    }
    template <std::size_t half>
    void copyEnds(const char *from, std::size_t size) noexcept {
        std::memcpy(bytes_.data(), from, half);
        std::memcpy(bytes_.data() + size - half, from + size - half, half);
    }

    std::array<char, capacity> bytes_;
    std::uint8_t size_ = 0;
};

} // namespace pelluvia
