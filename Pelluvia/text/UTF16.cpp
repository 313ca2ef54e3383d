// SPDX-License-Identifier: MIT

#include <Pelluvia/text/UTF16.h>

#include <algorithm>

namespace pelluvia {

namespace {

unsigned byteAt(std::string_view text, std::size_t position) noexcept {
    return static_cast<unsigned char>(text[position]);
}

/// What the lead byte of a character promises: its bytes, and the range of its second byte, which
/// is where overlong forms, surrogates and what lies beyond U+10FFFF show.
struct Lead {
    std::size_t length = 1;
    unsigned lowest = 0x80;
    unsigned highest = 0xBF;
};

Lead leadOf(unsigned byte) noexcept {
    if (byte >= 0xC2 && byte <= 0xDF) {
        return {.length = 2};
    }
    if (byte >= 0xE0 && byte <= 0xEF) {
        return {.length = 3,
                .lowest = byte == 0xE0 ? 0xA0U : 0x80U,
                .highest = byte == 0xED ? 0x9FU : 0xBFU};
    }
    if (byte >= 0xF0 && byte <= 0xF4) {
        return {.length = 4,
                .lowest = byte == 0xF0 ? 0x90U : 0x80U,
                .highest = byte == 0xF4 ? 0x8FU : 0xBFU};
    }
    return {};
}

/// The bytes of the first character of a text that is not empty.
std::size_t firstCharacter(std::string_view text) noexcept {
    if (byteAt(text, 0) < 0x80) {
        return 1; // the usual case
    }
    const Lead lead = leadOf(byteAt(text, 0));
    if (lead.length == 1 || text.size() < lead.length || byteAt(text, 1) < lead.lowest ||
        byteAt(text, 1) > lead.highest) {
        return 1;
    }
    for (std::size_t position = 2; position < lead.length; ++position) {
        if ((byteAt(text, position) & 0xC0U) != 0x80U) {
            return 1;
        }
    }
    return lead.length;
}

/// The bytes of the last character of a text that is not empty. A lead byte never stands inside a
/// character, so this finds the same characters as going forwards.
std::size_t lastCharacter(std::string_view text) noexcept {
    if (byteAt(text, text.size() - 1) < 0x80) {
        return 1; // the usual case
    }
    const std::size_t longest = std::min<std::size_t>(4, text.size());
    for (std::size_t length = longest; length > 1; --length) {
        if (firstCharacter(text.substr(text.size() - length)) == length) {
            return length;
        }
    }
    return 1;
}

std::size_t unitsOf(std::size_t characterLength) noexcept {
    return characterLength == 4 ? 2 : 1;
}

} // namespace

std::size_t utf16Length(std::string_view text) noexcept {
    std::size_t units = 0;
    while (!text.empty()) {
        const std::size_t length = firstCharacter(text);
        units += unitsOf(length);
        text.remove_prefix(length);
    }
    return units;
}

std::string_view utf16Substring(std::string_view text, std::size_t from,
                                std::size_t count) noexcept {
    if (count == 0) {
        return {};
    }
    std::size_t units = 0;
    std::size_t begin = 0;
    std::size_t end = 0;
    while (end < text.size()) {
        // Counted from `from`, since `from + count` may be beyond the largest size.
        if (units >= from && units - from >= count) {
            break;
        }
        const std::size_t length = firstCharacter(text.substr(end));
        units += unitsOf(length);
        end += length;
        if (units <= from) {
            begin = end;
        }
    }
    return text.substr(begin, end - begin);
}

std::size_t utf16PositionFromEnd(std::string_view text, std::size_t units) noexcept {
    std::size_t seen = 0;
    while (seen < units) {
        if (text.empty()) {
            return std::string_view::npos;
        }
        const std::size_t length = lastCharacter(text);
        seen += unitsOf(length);
        text.remove_suffix(length);
    }
    return text.size();
}

} // namespace pelluvia
