// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/xml/internal/scan/Bytes.h>

#include <cstddef>
#include <string_view>

/// \file
/// Characters that take more than one byte, and the references that stand for characters.

namespace pelluvia::xml::scan {

/// The first byte behind the run of multibyte characters that begins at `at`; where one of them is
/// not well-formed UTF-8, or not allowed in XML, the position of that one.
[[nodiscard]] const char *skipMultibyte(const char *at) noexcept;

/// Whether the byte is plain text: also a bracket, where what follows shows that it does not begin
/// `]]>`.
[[nodiscard]] inline bool isPlainText(const char *at) noexcept {
    if (*at != ']') {
        return is(plainText, *at);
    }
    const char next = at[1] == ']' ? at[2] : at[1];
    return next != '\0' && (next != '>' || at[1] == '>');
}

/// The first byte at or behind `at` that is no plain text, where all characters are plain that are
/// not ASCII.
template <class Block = Blocks>
[[nodiscard]] inline const char *skipText(const char *at) noexcept {
    while (true) {
        // As long as the text goes on, what is added is a constant: so the look at the next block
        // need not wait for this one.
        bool isCut = false;
        auto unsettled = Block::unsettled(at, isCut);
        // Tabs and line ends, which a block takes for controls, and brackets.
        while (unsettled != 0 && isPlainText(at + Block::first(unsettled))) {
            unsettled = Block::withoutFirst(unsettled);
        }
        if (unsettled == 0) {
            at += isCut ? Block::width - 1 : Block::width;
            continue;
        }
        at += Block::first(unsettled);
        const char *const next = isMultibyte(*at) ? skipMultibyte(at) : at;
        if (next == at) {
            return at;
        }
        at = next;
    }
}

/// A character in UTF-8.
struct Character {
    char bytes[4] = {};
    std::size_t size = 0; ///< 0 for none
    [[nodiscard]] std::string_view text() const noexcept { return {bytes, size}; }
};

/// Reads the reference at `at`, where there is an ampersand, and moves behind it: a reference to a
/// character by number, or one of the five that XML declares itself. None, and no move, for
/// anything else.
[[nodiscard]] Character readReference(const char *&at) noexcept;

/// No reference that `readReference` reads is longer.
inline constexpr std::size_t longestReference = 16;

} // namespace pelluvia::xml::scan
