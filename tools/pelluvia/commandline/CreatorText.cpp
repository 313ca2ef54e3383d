// SPDX-License-Identifier: MIT

#include <tools/pelluvia/commandline/CreatorText.h>

#include <Pelluvia/text/UTF8.h>

#include <cstdint>

namespace pelluvia::host {

namespace {

/// The code point of one well-formed character of more than one byte.
std::uint32_t codePoint(std::string_view character) {
    const auto byte = [character](std::size_t i) {
        return static_cast<std::uint32_t>(static_cast<unsigned char>(character[i]));
    };
    // The first byte holds the length in as many bits as there are bytes, and one zero bit.
    std::uint32_t result = byte(0) & (0xFFU >> (character.size() + 1));
    for (std::size_t i = 1; i < character.size(); ++i) {
        result = result << 6U | (byte(i) & 0x3FU);
    }
    return result;
}

std::string asciiText(char character) {
    switch (character) {
    case '&':
        return "&amp;";
    case '<':
        return "&lt;";
    case '>':
        return "&gt;";
    case '"':
        return "&quot;";
    case '\'':
        return "&apos;";
    default:
        return std::string(1, character);
    }
}

} // namespace

std::optional<std::string> attributeText(std::string_view text) {
    constexpr std::uint32_t firstPrintableBeyondASCII = 0xA0;
    std::string result;
    while (!text.empty()) {
        const std::size_t length = wellFormedCharacterLength(text);
        if (length == 0 || text.front() == '\x7F' ||
            (length == 1 && static_cast<unsigned char>(text.front()) < 0x20)) {
            return std::nullopt;
        }
        if (length == 1) {
            result += asciiText(text.front());
        } else {
            const std::uint32_t point = codePoint(text.substr(0, length));
            if (point < firstPrintableBeyondASCII || point == 0xFFFE || point == 0xFFFF) {
                return std::nullopt;
            }
            result += "&#" + std::to_string(point) + ';';
        }
        text.remove_prefix(length);
    }
    return result;
}

} // namespace pelluvia::host
