// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/xml/internal/Failure.h>
#include <Pelluvia/xml/internal/Input.h>
#include <Pelluvia/xml/internal/Source.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

namespace pelluvia::xml::scan {

/// Finds the line and column of places in a document by reading it once more: places are rarely
/// asked for, and so nobody has to count lines all the time.
class LineCounter {
  public:
    /// Reads from `source`, which must be open and at the beginning of the document.
    explicit LineCounter(std::unique_ptr<Source> source);

    /// The line and column behind the first `offset` bytes of the text. No offset may be smaller
    /// than the one before.
    [[nodiscard]] Position at(std::uint64_t offset);

  private:
    std::unique_ptr<Source> source_;
    Input input_;
    std::array<char, 16 * 1024> block_;
    std::string_view unread_; ///< of the block
    std::uint64_t passed_ = 0;
    Position position_{1, 1};
};

} // namespace pelluvia::xml::scan
