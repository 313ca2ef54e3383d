// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/xml/internal/Encoding.h>
#include <Pelluvia/xml/internal/Failure.h>
#include <Pelluvia/xml/internal/Source.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

namespace pelluvia::xml {

/// The text of a document or external entity: its bytes converted to UTF-8, without byte order
/// mark, with every line end (CR LF or CR) as one LF. Reads in blocks; memory is constant.
///
/// UTF-8 itself is passed on unchecked: the parser checks it.
class Input {
  public:
    /// Reads from `source`, which must be open and outlive the input.
    explicit Input(Source &source);

    /// Finds out the encoding. To be called once, before `read`; false when it cannot be converted,
    /// as `failure` tells.
    [[nodiscard]] bool begin();

    /// The first bytes, without a byte order mark, when they are not converted: at most some 1,000;
    /// empty otherwise. To be asked between `begin` and `read`.
    [[nodiscard]] std::string_view unconvertedStart() const noexcept {
        return converter_ ? std::string_view() : unread_;
    }

    /// Writes at most `room` bytes of text. Returns their number; 0 at the end and after a failure.
    /// Before that it gives almost `room` bytes, in whatever portions the source gives them: the
    /// parser asks ahead of what it looks at and relies on getting it. `room` must be at least 16.
    [[nodiscard]] std::size_t read(char *to, std::size_t room);

    /// Why there is no more text than was read, if that is not its end.
    [[nodiscard]] const std::optional<Failure> &failure() const noexcept { return failure_; }
    /// Where in the text a failure of `begin` is; of other failures nothing is known but that it is
    /// behind what was read.
    [[nodiscard]] Position failurePosition() const noexcept { return encoding_.position; }

    /// Bytes of text that `read` has given.
    [[nodiscard]] std::uint64_t delivered() const noexcept { return delivered_; }

  private:
    [[nodiscard]] bool fill();
    [[nodiscard]] std::size_t readSource(char *to, std::size_t room);
    [[nodiscard]] std::size_t convert(char *to, std::size_t room);
    [[nodiscard]] std::size_t copy(char *to, std::size_t room);
    [[nodiscard]] std::size_t unifyLineEnds(char *text, std::size_t size);

    Source &source_;
    std::unique_ptr<char[]> buffer_;
    std::string_view unread_; ///< what of the buffer was not yet converted
    bool sourceEnded_ = false;
    bool finished_ = false; ///< nothing is left, in the conversion neither
    bool endedWithReturn_ =
        false; ///< the text ended with a CR, given as LF: an LF now belongs to it
    std::optional<Converter> converter_;
    Encoding encoding_;
    std::optional<Failure> failure_;
    std::uint64_t delivered_ = 0;
};

} // namespace pelluvia::xml
