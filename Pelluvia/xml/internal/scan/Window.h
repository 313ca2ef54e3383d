// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/xml/internal/Input.h>

#include <cstddef>
#include <cstdint>
#include <memory>

namespace pelluvia::xml::scan {

/// The part of a document that is in memory: it moves over the text from the beginning to the end.
///
///     [ read already | cursor ... end | zeros ]
///
/// What is behind the cursor stays where it is until `more` is called.
class Window {
  public:
    /// A window on the text of `input`, which must outlive it, that holds at most `size` bytes.
    Window(Input &input, std::size_t size);

    /// What is looked at next. May be changed, from `cursor` to `end`.
    [[nodiscard]] char *cursor() const noexcept { return cursor_; }
    [[nodiscard]] const char *end() const noexcept { return end_; }
    /// Moves the cursor forward, at most to the end.
    void moveTo(const char *place) noexcept { cursor_ += place - cursor_; }

    [[nodiscard]] bool holds(std::size_t size) const noexcept {
        return static_cast<std::size_t>(end_ - cursor_) >= size;
    }
    /// Nothing follows what is in the window.
    [[nodiscard]] bool atEnd() const noexcept { return atEnd_; }

    /// Moves the window so that it begins at the cursor and holds more. False when nothing was
    /// added: at the end, or when the window is full.
    bool more();

    /// How many bytes of text are in front of the place, which is in the window.
    [[nodiscard]] std::uint64_t offset(const char *place) const noexcept {
        return passed_ + static_cast<std::uint64_t>(place - buffer_.get());
    }

  private:
    Input &input_;
    const std::size_t size_;
    std::unique_ptr<char[]> buffer_;
    char *cursor_;
    char *end_;
    std::uint64_t passed_ = 0; ///< bytes in front of the buffer
    bool atEnd_ = false;
};

} // namespace pelluvia::xml::scan
