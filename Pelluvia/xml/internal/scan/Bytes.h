// SPDX-License-Identifier: MIT

#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#if defined(__SSE2__) && !defined(PELLUVIA_PORTABLE_SCAN)
#include <emmintrin.h>
#endif

/// \file
/// What single bytes mean in XML, and the search for the next one that means anything. Everything
/// that is searched ends with `padding` bytes of zero, which no search passes: so none needs to
/// know where the text ends.

namespace pelluvia::xml::scan {

/// Zero bytes behind every text that is scanned; as many may be read behind its end.
inline constexpr std::size_t padding = 32;

enum ByteClass : std::uint8_t {
    nameStart = 1,   ///< may begin a name (of the ASCII ones, the only names that are scanned here)
    nameByte = 2,    ///< may stand in a name
    blank = 4,       ///< white space; a CR is none here, for line ends are one LF by now
    plainText = 8,   ///< means nothing but itself between tags
    plainValue = 16, ///< the same in an attribute value, whichever the quote
    tagLead = 32     ///< may begin a tag with the white space in front of it
};

inline constexpr std::array<std::uint8_t, 256> byteClasses = [] {
    std::array<std::uint8_t, 256> classes{};
    for (unsigned c = 0x20; c < 0x80; ++c) {
        const bool isLetter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
        const bool isNameByte = isLetter || (c >= '0' && c <= '9') || c == '-' || c == '.';
        const bool isMarkup = c == '<' || c == '&';
        classes[c] = static_cast<std::uint8_t>(
            (isLetter ? nameStart : 0) | (isNameByte ? nameByte : 0) | (c == ' ' ? blank : 0) |
            (isMarkup || c == ']' ? 0 : plainText) |
            (isMarkup || c == '"' || c == '\'' ? 0 : plainValue) |
            (c == ' ' || c == '<' ? tagLead : 0));
    }
    classes['\t'] = classes['\n'] = blank | plainText | tagLead;
    return classes;
}();

[[nodiscard]] constexpr bool is(ByteClass wanted, char c) noexcept {
    return (byteClasses[static_cast<unsigned char>(c)] & wanted) != 0;
}

/// A byte of a character outside ASCII.
[[nodiscard]] constexpr bool isMultibyte(char c) noexcept {
    return static_cast<unsigned char>(c) >= 0x80;
}

/// The first byte at or behind `at` that is not of the class.
[[nodiscard]] inline const char *skip(ByteClass skipped, const char *at) noexcept {
    while (is(skipped, *at)) {
        ++at;
    }
    return at;
}

/// Looks at blocks of eight bytes, on any machine.
struct Words {
    static constexpr std::size_t width = 8;

    /// Tells the bytes of a block that are not plain; 0 for none. A byte behind the first of them
    /// may be among them by mistake (a borrow runs upwards).
    template <ByteClass plain>
    [[nodiscard]] static std::uint64_t special(const char *at) noexcept {
        const std::uint64_t word = load(at);
        std::uint64_t found =
            (word & highs) | below(word, 0x20) | equal(word, '<') | equal(word, '&');
        if constexpr (plain == plainText) {
            found |= equal(word, ']');
        } else {
            found |= equal(word, '"') | equal(word, '\'');
        }
        return found;
    }
    /// Tells where a tag or reference begins, or the text ends, likewise.
    [[nodiscard]] static std::uint64_t markup(const char *at) noexcept {
        const std::uint64_t word = load(at);
        return below(word, 1) | equal(word, '<') | equal(word, '&');
    }
    /// The position of the first.
    [[nodiscard]] static std::size_t first(std::uint64_t special) noexcept {
        return static_cast<std::size_t>(std::countr_zero(special)) / 8;
    }
    /// The others.
    [[nodiscard]] static std::uint64_t withoutFirst(std::uint64_t special) noexcept {
        return special & (special - 1);
    }

    /// Tells the bytes of a block that are not plain text, as `special`, and those outside ASCII.
    [[nodiscard]] static std::uint64_t unsettled(const char *at, bool &isCut) noexcept {
        isCut = false;
        return special<plainText>(at);
    }

    /// Whether `size` bytes agree. Up to seven bytes behind them are read on both sides.
    [[nodiscard]] static bool agree(const char *one, const char *other, std::size_t size) noexcept {
        while (size > width) {
            if (load(one) != load(other)) {
                return false;
            }
            one += width;
            other += width;
            size -= width;
        }
        return (load(one) ^ load(other)) << (8 * (width - size)) == 0;
    }

  private:
    static constexpr std::uint64_t ones = 0x0101010101010101;
    static constexpr std::uint64_t highs = 0x8080808080808080;

    /// Eight bytes, the first of them lowest.
    [[nodiscard]] static std::uint64_t load(const char *at) noexcept {
        std::uint64_t word = 0;
        std::memcpy(&word, at, sizeof word);
        if constexpr (std::endian::native == std::endian::big) {
            word = __builtin_bswap64(word);
        }
        return word;
    }
    /// The high bit of each byte below `limit`, which is at most 0x80.
    [[nodiscard]] static constexpr std::uint64_t below(std::uint64_t word,
                                                       unsigned char limit) noexcept {
        return (word - ones * limit) & ~word & highs;
    }
    [[nodiscard]] static constexpr std::uint64_t equal(std::uint64_t word, char c) noexcept {
        return below(word ^ (ones * static_cast<unsigned char>(c)), 1);
    }
};

#if defined(__SSE2__) && !defined(PELLUVIA_PORTABLE_SCAN)
/// Looks at blocks of sixteen bytes with what every x86-64 has.
struct Vectors {
    static constexpr std::size_t width = 16;

    template <ByteClass plain>
    [[nodiscard]] static std::uint32_t special(const char *at) noexcept {
        const __m128i bytes = load(at);
        // Signed: bytes from 0x80 on are negative.
        __m128i found = _mm_cmplt_epi8(bytes, _mm_set1_epi8(0x20));
        found = _mm_or_si128(found, equal(bytes, '<'));
        found = _mm_or_si128(found, equal(bytes, '&'));
        if constexpr (plain == plainText) {
            found = _mm_or_si128(found, equal(bytes, ']'));
        } else {
            found = _mm_or_si128(found, equal(bytes, '"'));
            found = _mm_or_si128(found, equal(bytes, '\''));
        }
        return mask(found);
    }
    [[nodiscard]] static std::uint32_t markup(const char *at) noexcept {
        const __m128i bytes = load(at);
        const __m128i found = _mm_or_si128(equal(bytes, '<'), equal(bytes, '&'));
        return mask(_mm_or_si128(found, equal(bytes, '\0')));
    }
    [[nodiscard]] static std::size_t first(std::uint32_t special) noexcept {
        return static_cast<std::size_t>(std::countr_zero(special));
    }
    [[nodiscard]] static std::uint32_t withoutFirst(std::uint32_t special) noexcept {
        return special & (special - 1);
    }

    /// Of a block that holds `special`: which of the bytes are more than characters of two bytes,
    /// which settle most texts that are not English. 0 for none; `isCut` where the block ends
    /// within such a character.
    [[nodiscard]] static std::uint32_t unsettled(const char *at, bool &isCut) noexcept {
        const __m128i bytes = load(at);
        const __m128i controls =
            _mm_andnot_si128(bytes, _mm_cmplt_epi8(bytes, _mm_set1_epi8(0x20)));
        const __m128i markup =
            _mm_or_si128(_mm_or_si128(equal(bytes, '<'), equal(bytes, '&')), equal(bytes, ']'));
        // Signed: 0x80 to 0xBF, which continue a character, are below the others.
        const std::uint32_t continuing = mask(_mm_cmplt_epi8(bytes, _mm_set1_epi8(-0x40)));
        const __m128i fromC2 = _mm_cmpgt_epi8(bytes, _mm_set1_epi8(-0x3F));
        const __m128i belowE0 = _mm_cmplt_epi8(bytes, _mm_set1_epi8(-0x20));
        const std::uint32_t leading = mask(_mm_and_si128(fromC2, belowE0));
        isCut = leading >> (width - 1) != 0;
        // Each that leads is followed by one that continues; where one is not, both are unsettled.
        const std::uint32_t unpaired = (leading << 1U) ^ continuing;
        return (mask(_mm_or_si128(markup, controls)) | (mask(bytes) & ~(leading | continuing)) |
                unpaired | ((unpaired & (leading << 1U)) >> 1U)) &
               0xFFFFU;
    }

    [[nodiscard]] static bool agree(const char *one, const char *other, std::size_t size) noexcept {
        while (size > width) {
            if (differences(one, other) != 0) {
                return false;
            }
            one += width;
            other += width;
            size -= width;
        }
        return (differences(one, other) << (32 - size)) == 0;
    }

  private:
    [[nodiscard]] static __m128i load(const char *at) noexcept {
        return _mm_loadu_si128(reinterpret_cast<const __m128i *>(at));
    }
    [[nodiscard]] static __m128i equal(__m128i bytes, char c) noexcept {
        return _mm_cmpeq_epi8(bytes, _mm_set1_epi8(c));
    }
    /// The high bit of each byte, the first of them lowest.
    [[nodiscard]] static std::uint32_t mask(__m128i bytes) noexcept {
        return static_cast<std::uint32_t>(_mm_movemask_epi8(bytes));
    }
    static constexpr std::uint32_t allOnes = 0xFFFF;
    /// A bit for each byte that differs, the first of them lowest.
    [[nodiscard]] static std::uint32_t differences(const char *one, const char *other) noexcept {
        return allOnes ^ mask(_mm_cmpeq_epi8(load(one), load(other)));
    }
};
using Blocks = Vectors;
#else
using Blocks = Words;
#endif

/// The first byte at or behind `at` that is not plain.
template <ByteClass plain, class Block = Blocks>
[[nodiscard]] inline const char *findSpecial(const char *at) noexcept {
    while (true) {
        const auto special = Block::template special<plain>(at);
        if (special == 0) {
            at += Block::width;
            continue;
        }
        at += Block::first(special);
        // Tabs and line ends look like the other control bytes to a block.
        if (!is(plain, *at)) {
            return at;
        }
        ++at;
    }
}

/// The first tag, reference or zero at or behind `at`: what ends a text of which all characters are
/// known to be right.
template <class Block = Blocks>
[[nodiscard]] inline const char *findMarkup(const char *at) noexcept {
    while (true) {
        const auto markup = Block::markup(at);
        if (markup != 0) {
            return at + Block::first(markup);
        }
        at += Block::width;
    }
}

/// Whether `size` bytes agree, at least one. Up to `padding` bytes behind them may be read on both
/// sides.
template <class Block = Blocks>
[[nodiscard]] inline bool agree(const char *one, const char *other, std::size_t size) noexcept {
    return Block::agree(one, other, size);
}

} // namespace pelluvia::xml::scan
