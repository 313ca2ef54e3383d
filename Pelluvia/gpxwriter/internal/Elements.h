// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/gpxwriter/internal/TextCursor.h>
#include <Pelluvia/system/OutputFile.h>

#include <cstddef>
#include <cstdint>
#include <string_view>

/// \file
/// The pieces of elements that all writer functions share.

namespace pelluvia {

/// Writes the text with XML's reserved characters escaped, cut to less than 512 bytes. Null is
/// empty.
void writeEscaped(OutputFile &file, const char *text);

/// The most bytes of a text once it is escaped, with its closing NUL.
inline constexpr std::size_t escapedCapacity = 512;
/// Appends the text as `writeEscaped` writes it. Needs room for `escapedCapacity` bytes.
void appendEscaped(TextCursor &text, const char *value) noexcept;

/// The most bytes of an element of text on a line of its own, whose name has up to 16 letters.
inline constexpr std::size_t largestTextElement = escapedCapacity + 2 * 16 + 8;
/// Appends what `GPXWriteElementWithStringIfNotEmpty` writes.
template <std::size_t size>
void appendElementIfGiven(TextCursor &text, const char (&name)[size], const char *value) noexcept {
    static_assert(size <= 16 + 1);
    if (value != nullptr) {
        text.literal("<").literal(name).literal(">");
        appendEscaped(text, value);
        text.literal("</").literal(name).literal(">\n");
    }
}

/// Writes `before`, the number as `%d`, `after`.
void writeIntegerBetween(OutputFile &file, std::string_view before, std::int32_t value,
                         std::string_view after);

/// Writes `before`, the number as `%f`, `after`.
void writeFixedBetween(OutputFile &file, std::string_view before, double value,
                       std::string_view after);

} // namespace pelluvia
