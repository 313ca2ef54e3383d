// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/xml/internal/Failure.h>

#include <cstddef>
#include <iconv.h>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

/// \file
/// In which encoding a document is written, and its conversion to UTF-8. Done here rather than by
/// the XML library because that reports conversion errors to a handler of the whole process.

namespace pelluvia::xml {

/// What the first bytes of a document (or of an external entity) tell.
struct Encoding {
    std::string name;               ///< for iconv; empty for UTF-8
    std::size_t markSize = 0;       ///< bytes of the byte order mark
    std::optional<Failure> failure; ///< the declaration contradicts the bytes
    Position position;              ///< just behind the name in the declaration
};

/// Looks for a byte order mark, the pattern of `<?xml`, and an encoding declaration. A mark has the
/// last word over a declaration. `start` should hold the whole declaration, if there is one.
[[nodiscard]] Encoding detectEncoding(std::string_view start);

/// A conversion to UTF-8.
class Converter {
  public:
    /// Nothing when the system does not know the encoding.
    [[nodiscard]] static std::optional<Converter> open(const std::string &encoding);

    Converter(Converter &&other) noexcept : handle_(std::exchange(other.handle_, closed())) {}
    Converter &operator=(Converter &&other) noexcept {
        std::swap(handle_, other.handle_);
        return *this;
    }
    ~Converter();

    enum class Outcome {
        done,       ///< everything was converted
        full,       ///< no room for the next character
        incomplete, ///< the input ends within a character
        invalid     ///< the input is not text in this encoding
    };

    /// Converts bytes from the front of `from` and removes them; adds to `size` what it wrote
    /// behind `to`, at most `room` bytes.
    [[nodiscard]] Outcome convert(std::string_view &from, char *to, std::size_t room,
                                  std::size_t &size);
    /// Writes what the conversion still holds back at the end of the input (at most a few bytes).
    [[nodiscard]] Outcome finish(char *to, std::size_t room, std::size_t &size);

  private:
    explicit Converter(iconv_t handle) noexcept : handle_(handle) {}
    static iconv_t closed() noexcept;

    iconv_t handle_;
};

} // namespace pelluvia::xml
