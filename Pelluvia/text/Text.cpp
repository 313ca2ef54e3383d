// SPDX-License-Identifier: MIT

#include <Pelluvia/text/Text.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

namespace pelluvia {

bool isASCII(std::string_view text) noexcept {
    // Eight bytes at a time, of the last ones some again.
    constexpr std::uint64_t highBits = 0x8080'8080'8080'8080;
    const auto wordAt = [text](std::size_t position) {
        std::uint64_t word = 0;
        std::memcpy(&word, text.data() + position, sizeof word);
        return word;
    };
    std::uint64_t seen = 0;
    if (text.size() < sizeof seen) {
        for (const char c : text) {
            seen |= static_cast<unsigned char>(c);
        }
        return (seen & 0x80U) == 0;
    }
    for (std::size_t position = 0; position + sizeof seen < text.size(); position += sizeof seen) {
        seen |= wordAt(position);
    }
    return ((seen | wordAt(text.size() - sizeof seen)) & highBits) == 0;
}

namespace {

/// The length of the one white space character that `text` begins with, 0 when there is none.
std::size_t whiteSpaceLength(std::string_view text) noexcept {
    if (text.empty()) {
        return 0;
    }
    if (text[0] == ' ' || (text[0] >= '\t' && text[0] <= '\r')) {
        return 1;
    }
    if (isASCII(text.substr(0, 1))) {
        return 0;
    }
    if (text.starts_with("\xC2\x85") || text.starts_with("\xC2\xA0")) {
        return 2; // U+0085, U+00A0
    }
    if (text.starts_with("\xE2\x80") && text.size() >= 3) {
        const auto last = static_cast<unsigned char>(text[2]);
        const bool isSpace = last >= 0x80 && last <= 0x8A; // U+2000 to U+200A
        return isSpace || last == 0xA8 || last == 0xA9 || last == 0xAF ? 3 : 0;
    }
    constexpr std::array<std::string_view, 3> others = {"\xE1\x9A\x80", "\xE2\x81\x9F",
                                                        "\xE3\x80\x80"}; // U+1680, U+205F, U+3000
    const bool found = std::any_of(others.begin(), others.end(), [text](std::string_view each) {
        return text.starts_with(each);
    });
    return found ? 3 : 0;
}

} // namespace

std::size_t leadingWhiteSpace(std::string_view text) noexcept {
    std::size_t length = 0;
    while (const std::size_t next = whiteSpaceLength(text.substr(length))) {
        length += next;
    }
    return length;
}

std::size_t trailingWhiteSpace(std::string_view text) noexcept {
    std::string_view rest = text;
    // No character is longer than 3 bytes, none ends with the bytes of a shorter one, and a byte of
    // ASCII is never the end of a longer one.
    const auto longest = [&rest] {
        return rest.empty() || isASCII(rest.substr(rest.size() - 1)) ? 1U : 3U;
    };
    for (std::size_t length = 1; length <= longest() && length <= rest.size();) {
        if (whiteSpaceLength(rest.substr(rest.size() - length)) == length) {
            rest.remove_suffix(length);
            length = 1;
        } else {
            ++length;
        }
    }
    return text.size() - rest.size();
}

} // namespace pelluvia
