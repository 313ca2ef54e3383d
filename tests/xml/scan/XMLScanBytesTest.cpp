// SPDX-License-Identifier: MIT

#include <Pelluvia/xml/internal/scan/Bytes.h>
#include <Pelluvia/xml/internal/scan/Characters.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <tests/support/Chance.h>
#include <vector>

namespace pelluvia::xml::scan {
namespace {

/// Whether a byte means nothing but itself, said as XML says it.
bool isPlain(ByteClass kind, unsigned char byte) {
    if (byte == '<' || byte == '&' || byte >= 0x80) {
        return false;
    }
    if (kind == plainText) {
        return byte != ']' && (byte >= 0x20 || byte == '\t' || byte == '\n');
    }
    return byte >= 0x20 && byte != '"' && byte != '\'';
}

template <class Width>
class ScanBytes : public ::testing::Test {};

#if defined(__SSE2__) && !defined(PELLUVIA_PORTABLE_SCAN)
using Widths = ::testing::Types<Words, Vectors>;
#else
using Widths = ::testing::Types<Words>;
#endif
TYPED_TEST_SUITE(ScanBytes, Widths);

/// Puts each byte at each place of texts of `x` at each alignment, with zeros behind.
template <ByteClass kind, class Width>
void expectEveryByteToBeFound() {
    constexpr std::size_t longest = 40;
    alignas(64) std::array<char, 64 + longest + 1 + padding> buffer{};
    for (std::size_t alignment = 0; alignment < 16; ++alignment) {
        for (std::size_t place = 0; place < longest; ++place) {
            for (unsigned byte = 0; byte < 256; ++byte) {
                buffer.fill('\0');
                char *const text = buffer.data() + alignment;
                std::fill_n(text, place + 1 + (byte % 17), 'x');
                const std::size_t size = place + 1 + (byte % 17);
                text[place] = static_cast<char>(byte);
                const std::size_t expected =
                    isPlain(kind, static_cast<unsigned char>(byte)) ? size : place;
                const char *const found = findSpecial<kind, Width>(text);
                ASSERT_EQ(found - text, static_cast<std::ptrdiff_t>(expected))
                    << "byte " << byte << " at " << place << " of " << size;
            }
        }
    }
}

TYPED_TEST(ScanBytes, FindEverySpecialByteInText) {
    expectEveryByteToBeFound<plainText, TypeParam>();
}

TYPED_TEST(ScanBytes, FindEverySpecialByteInValues) {
    expectEveryByteToBeFound<plainValue, TypeParam>();
}

/// Borrows between the bytes of a word must not hide or invent anything.
TYPED_TEST(ScanBytes, FindTheFirstOfAnyTwo) {
    std::array<char, 24 + padding> text{};
    for (unsigned one = 0; one < 256; ++one) {
        for (unsigned other = 0; other < 256; ++other) {
            for (std::size_t distance = 1; distance < 9; ++distance) {
                text.fill('\0');
                std::fill_n(text.data(), 20, 'x');
                text[3] = static_cast<char>(one);
                text[3 + distance] = static_cast<char>(other);
                const auto byLoop = [&](ByteClass kind) {
                    std::size_t at = 0;
                    while (isPlain(kind, static_cast<unsigned char>(text[at]))) {
                        ++at;
                    }
                    return text.data() + at;
                };
                ASSERT_EQ((findSpecial<plainText, TypeParam>(text.data())), byLoop(plainText))
                    << one << " " << other << " " << distance;
                ASSERT_EQ((findSpecial<plainValue, TypeParam>(text.data())), byLoop(plainValue))
                    << one << " " << other << " " << distance;
            }
        }
    }
}

TYPED_TEST(ScanBytes, FindTheEndOfAnEmptyText) {
    const std::array<char, padding> nothing{};
    EXPECT_EQ((findSpecial<plainText, TypeParam>(nothing.data())), nothing.data());
    EXPECT_EQ((findSpecial<plainValue, TypeParam>(nothing.data())), nothing.data());
}

/// The end of a text, found character by character.
const char *endOfText(const char *at) {
    while (true) {
        const std::string_view bracket(at, *at != ']' ? 0 : at[1] != ']' ? 2 : 3);
        const bool isPlain =
            bracket.empty() ? is(plainText, *at) : bracket != "]]>" && bracket.back() != '\0';
        const char *const next = isPlain ? at + 1 : skipMultibyte(at);
        if (next == at) {
            return at;
        }
        at = next;
    }
}

/// Pieces of one to four bytes, right ones and wrong ones, in any order: so every character comes
/// to lie over the end of a block somewhere.
TYPED_TEST(ScanBytes, SkipTextsOfAnyCharacters) {
    constexpr std::array<std::string_view, 25> pieces = {"a",
                                                         "bc ",
                                                         "def, ghij klm",
                                                         "\t",
                                                         "\n",
                                                         "\xC3\xA9",
                                                         "\xD0\xBE",
                                                         "\xDF\xBF",
                                                         "\xE2\x82\xAC",
                                                         "\xED\x9F\xBF",
                                                         "\xEF\xBF\xBD",
                                                         "\xF0\x9F\x9A\xB2",
                                                         "]",
                                                         "]]",
                                                         "]>",
                                                         "\xC3",
                                                         "\xA9",
                                                         "\xC1\x81",
                                                         "\xE0\x80",
                                                         "\xF4\x90\x80\x80",
                                                         "\xFF",
                                                         "]]>",
                                                         "<",
                                                         "&",
                                                         "\x01"};
    constexpr std::size_t rightPieces = 15;
    testing::Chance chance(20240504);
    for (int round = 0; round < 200'000; ++round) {
        std::string text;
        const std::size_t count = chance() % 40;
        for (std::size_t i = 0; i < count; ++i) {
            text += pieces[chance() % rightPieces];
        }
        text += pieces[chance() % pieces.size()];
        text += chance() % 4 == 0 ? "" : "x";
        const std::size_t size = text.size();
        text.append(padding, '\0');
        ASSERT_EQ(skipText<TypeParam>(text.data()) - text.data(),
                  endOfText(text.data()) - text.data())
            << text.substr(0, size);
    }
}

TYPED_TEST(ScanBytes, AgreeOnlyWhereAllBytesDo) {
    constexpr std::size_t longest = 70;
    std::array<char, 16 + longest + padding> one{};
    std::array<char, 16 + longest + padding> other{};
    for (std::size_t alignment = 0; alignment < 16; ++alignment) {
        for (std::size_t size = 1; size <= longest; ++size) {
            one.fill('a');
            other.fill('b'); // what is behind does not count
            char *const text = one.data() + alignment;
            std::fill_n(other.data(), size, 'x');
            std::fill_n(text, size, 'x');
            EXPECT_TRUE(agree<TypeParam>(text, other.data(), size)) << size;
            EXPECT_TRUE(agree<TypeParam>(other.data(), text, size)) << size;
            for (std::size_t i = 0; i < size; ++i) {
                for (unsigned bit = 0; bit < 8; ++bit) {
                    text[i] = static_cast<char>('x' ^ (1U << bit));
                    EXPECT_FALSE(agree<TypeParam>(text, other.data(), size)) << i << "/" << size;
                }
                text[i] = 'x';
            }
        }
    }
}

TEST(ScanByteClasses, AreThoseOfXML) {
    const auto contains = [](const std::string &bytes, char c) {
        return bytes.find(c) != std::string::npos;
    };
    const std::string letters = "ABCDEFGHIJKLMNOPQRSTUVWXYZ_abcdefghijklmnopqrstuvwxyz";
    for (unsigned byte = 0; byte < 256; ++byte) {
        const char c = static_cast<char>(byte);
        EXPECT_EQ(is(nameStart, c), contains(letters, c)) << byte;
        EXPECT_EQ(is(nameByte, c), contains(letters + "0123456789-.", c)) << byte;
        EXPECT_EQ(is(blank, c), contains(" \t\n", c)) << byte;
        EXPECT_EQ(is(plainText, c), isPlain(plainText, static_cast<unsigned char>(byte))) << byte;
        EXPECT_EQ(is(plainValue, c), isPlain(plainValue, static_cast<unsigned char>(byte))) << byte;
        EXPECT_EQ(isMultibyte(c), byte >= 0x80) << byte;
    }
}

TEST(ScanByteClasses, AreSkipped) {
    const std::string text = "ab-1 \t\n=";
    EXPECT_EQ(skip(nameByte, text.c_str()) - text.c_str(), 4);
    EXPECT_EQ(skip(blank, text.c_str() + 4) - text.c_str(), 7);
    EXPECT_EQ(skip(blank, text.c_str()), text.c_str());
    const std::string empty;
    EXPECT_EQ(skip(nameByte, empty.c_str()), empty.c_str());
}

} // namespace
} // namespace pelluvia::xml::scan
