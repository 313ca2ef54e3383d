// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/text/NumberText.h>
#include <Pelluvia/text/TimestampText.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace pelluvia {

/// Appends text to memory that is known to be large enough: whoever makes one has reserved the room
/// for everything that will be appended (see the `largest...` constants), so that a point costs one
/// bounds check. Adds no NUL.
class TextCursor {
  public:
    explicit TextCursor(char *begin) noexcept : position_(begin) {}

    /// Where the next text goes.
    [[nodiscard]] char *position() const noexcept { return position_; }

    /// A literal: its length is known to the compiler, so the copy becomes a few stores.
    template <std::size_t size>
    TextCursor &literal(const char (&text)[size]) noexcept {
        std::memcpy(position_, text, size - 1);
        position_ += size - 1;
        return *this;
    }
    TextCursor &string(std::string_view text) noexcept {
        position_ += text.copy(position_, text.size());
        return *this;
    }
    /// As `%d`.
    TextCursor &integer(std::int64_t value) noexcept {
        position_ = writeInteger(position_, value);
        return *this;
    }
    /// As `%02d`.
    TextCursor &twoDigits(std::int64_t value) noexcept {
        position_ = writeTwoDigits(position_, value);
        return *this;
    }
    /// As `%f`.
    TextCursor &fixed(double value) noexcept {
        position_ = writeFixed(position_, value);
        return *this;
    }
    /// As `%1.10g`.
    TextCursor &general(double value) noexcept {
        position_ = writeGeneral(position_, value);
        return *this;
    }
    /// Date and time in UTC; false, and nothing is appended, when the time cannot be broken down.
    [[nodiscard]] bool timestamp(TimestampText &timestamps, std::int64_t time) noexcept {
        char *end = timestamps.write(position_, time);
        position_ = end != nullptr ? end : position_;
        return end != nullptr;
    }

  private:
    char *position_;
};

} // namespace pelluvia
