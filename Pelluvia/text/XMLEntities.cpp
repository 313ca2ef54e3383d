// SPDX-License-Identifier: MIT

#include <Pelluvia/text/Companion.h>

#include <array>
#include <cstring>

namespace pelluvia {

namespace {

/// What one character of the source becomes.
struct Replacement {
    std::string_view text;
    std::size_t sourceLength;
};

constexpr std::string_view unrepresentable = "?";

constexpr unsigned char byteAt(const char *text, std::size_t index) noexcept {
    return static_cast<unsigned char>(text[index]);
}

/// The characters that stand for themselves and take one byte. Not NUL, which ends the text.
constexpr bool isPlain(unsigned char byte) noexcept {
    const bool isReserved =
        byte == '&' || byte == '<' || byte == '>' || byte == '"' || byte == '\'';
    const bool isSpace = byte == '\t' || byte == '\n' || byte == '\r';
    return (byte >= ' ' && byte < 0x80 && !isReserved) || isSpace;
}

constexpr auto plainBytes = [] {
    std::array<bool, 256> plain{};
    for (std::size_t byte = 0; byte < plain.size(); ++byte) {
        plain[byte] = isPlain(static_cast<unsigned char>(byte));
    }
    return plain;
}();

/// The length that a UTF-8 sequence has by its first byte; 1 for what begins none.
constexpr std::size_t announcedLength(unsigned char first) noexcept {
    if (first >= 0xC2 && first <= 0xDF) {
        return 2;
    }
    if (first >= 0xE0 && first <= 0xEF) {
        return 3;
    }
    return first >= 0xF0 && first <= 0xF4 ? 4 : 1;
}

/// Whether the second byte rules the sequence out: it would be longer than needed, or beyond the
/// last character. (Surrogates pass; they are recognised as such.)
constexpr bool isOverlongOrBeyond(unsigned char first, unsigned char second) noexcept {
    return (first == 0xE0 && second < 0xA0) || (first == 0xF0 && second < 0x90) ||
           (first == 0xF4 && second > 0x8F);
}

/// The length of the UTF-8 sequence at the start of the text, 1 when there is none. Looks at no
/// byte behind the closing NUL, since that continues no sequence.
std::size_t sequenceLength(const char *text) noexcept {
    const unsigned char first = byteAt(text, 0);
    const std::size_t length = announcedLength(first);
    for (std::size_t i = 1; i < length; ++i) {
        if ((byteAt(text, i) & 0xC0U) != 0x80) {
            return 1;
        }
    }
    return length > 1 && isOverlongOrBeyond(first, byteAt(text, 1)) ? 1 : length;
}

/// Whether XML 1.0 excludes the character of a three-byte sequence: the surrogates, U+FFFE, U+FFFF.
bool isExcluded(const char *sequence) noexcept {
    const unsigned char first = byteAt(sequence, 0);
    const unsigned char second = byteAt(sequence, 1);
    return (first == 0xED && second >= 0xA0) ||
           (first == 0xEF && second == 0xBF && byteAt(sequence, 2) >= 0xBE);
}

/// What the character at the start of the text, which is not a plain one, becomes.
Replacement replacementOf(const char *text) noexcept {
    switch (*text) {
    case '&':
        return {"&amp;", 1};
    case '<':
        return {"&lt;", 1};
    case '>':
        return {"&gt;", 1};
    case '"':
        return {"&quot;", 1};
    case '\'':
        return {"&apos;", 1};
    default:
        break;
    }
    if (byteAt(text, 0) < ' ') {
        return {unrepresentable, 1};
    }
    const std::size_t length = sequenceLength(text);
    if (length == 3 && isExcluded(text)) {
        return {unrepresentable, length};
    }
    return {std::string_view(text, length), length};
}

} // namespace

char *SkerryCStringByMakingStandardXMLEntities(char *destination, const char *source,
                                               std::size_t capacity) {
    if (capacity == 0) {
        return destination;
    }
    char *out = destination;
    const char *const end = destination + capacity - 1;
    while (source != nullptr && *source != '\0' && out != end) {
        if (plainBytes[byteAt(source, 0)]) {
            *out++ = *source++;
            continue;
        }
        const Replacement next = replacementOf(source);
        if (next.text.size() > static_cast<std::size_t>(end - out)) {
            break;
        }
        std::memcpy(out, next.text.data(), next.text.size());
        out += next.text.size();
        source += next.sourceLength;
    }
    *out = '\0';
    return destination;
}

} // namespace pelluvia
