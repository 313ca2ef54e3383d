// SPDX-License-Identifier: MIT

#include <Pelluvia/xml/internal/scan/Bytes.h>
#include <Pelluvia/xml/internal/scan/Characters.h>

#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <string_view>

namespace pelluvia::xml::scan {
namespace {

using namespace std::string_view_literals;

bool isAllowed(std::uint32_t code) {
    return code == 9 || code == 10 || code == 13 || (code >= 0x20 && code < 0xD800) ||
           (code > 0xDFFF && code < 0xFFFE) || (code > 0xFFFF && code < 0x110000);
}

/// In UTF-8, in the least number of bytes or more; whether that is right or not.
std::string encoded(std::uint32_t code, std::size_t size) {
    std::string bytes(size, '\0');
    for (std::size_t i = size - 1; i > 0; --i) {
        bytes[i] = static_cast<char>(0x80U | (code & 0x3FU));
        code >>= 6U;
    }
    const std::uint32_t lead = size == 1 ? 0 : 0xFFU & (0xFF00U >> size);
    bytes[0] = static_cast<char>(lead | code);
    return bytes;
}

std::string encoded(std::uint32_t code) {
    return encoded(code, code < 0x80 ? 1 : code < 0x800 ? 2 : code < 0x10000 ? 3 : 4);
}

/// How many bytes are skipped.
std::size_t skipped(const std::string &text) {
    return static_cast<std::size_t>(skipMultibyte(text.c_str()) - text.c_str());
}

TEST(ScanCharacters, EveryCodePointIsSkippedIfXMLAllowsIt) {
    for (std::uint32_t code = 0x80; code < 0x200000; ++code) {
        const std::string bytes = encoded(code);
        ASSERT_EQ(skipped(bytes), isAllowed(code) ? bytes.size() : 0U) << std::hex << code;
    }
}

TEST(ScanCharacters, NoLongerFormIsSkipped) {
    for (std::uint32_t code = 0; code < 0x10000; ++code) {
        for (std::size_t size = encoded(code).size() + 1; size <= 4; ++size) {
            ASSERT_EQ(skipped(encoded(code, size)), 0U) << std::hex << code << " in " << size;
        }
    }
}

TEST(ScanCharacters, AnyThreeBytesAreJudgedAsTheirCharactersAre) {
    for (unsigned lead = 0x80; lead < 0x100; ++lead) {
        for (unsigned second = 0; second < 0x100; ++second) {
            std::string text = {static_cast<char>(lead), static_cast<char>(second)};
            const bool isTwo = lead >= 0xC2 && lead < 0xE0 && second >= 0x80 && second < 0xC0;
            ASSERT_EQ(skipped(text + "x"), isTwo ? 2U : 0U) << lead << " " << second;
            for (const char third : "\x7F\x80\xBF\xC0"sv) {
                const bool isThree = lead >= 0xE0 && lead < 0xF0 && second >= 0x80 &&
                                     second < 0xC0 && (third == '\x80' || third == '\xBF') &&
                                     !(lead == 0xE0 && second < 0xA0) &&
                                     !(lead == 0xED && second > 0x9F) &&
                                     !(lead == 0xEF && second == 0xBF && third == '\xBF');
                const std::size_t size = skipped(text + third + "x");
                ASSERT_EQ(size, isThree ? 3U : isTwo ? 2U : 0U) << lead << " " << second;
            }
        }
    }
}

TEST(ScanCharacters, ARunEndsAtTheFirstThatIsWrongOrCutOff) {
    const std::string run = "\xC3\xA9\xE6\x9D\xB1\xF0\x9F\x98\x80";
    EXPECT_EQ(skipped(run), 9U);
    EXPECT_EQ(skipped(run + "abc"), 9U);
    EXPECT_EQ(skipped(run + "\x80"), 9U);
    EXPECT_EQ(skipped(run + "\xFF"), 9U);
    constexpr std::size_t ends[] = {0, 0, 2, 2, 2, 5, 5, 5, 5};
    for (std::size_t size = 0; size < run.size(); ++size) {
        EXPECT_EQ(skipped(run.substr(0, size)), ends[size]) << size;
    }
    EXPECT_EQ(skipped(""), 0U);
    EXPECT_EQ(skipped("a\xC3\xA9"), 0U);
}

/// What a reference stands for, and that the place moves with it; "none" for none.
std::string read(const std::string &text) {
    const char *at = text.c_str();
    const Character character = readReference(at);
    if (character.size == 0) {
        EXPECT_EQ(at, text.c_str()) << "no reference, no move";
        return "none";
    }
    EXPECT_EQ(at, text.c_str() + text.find(';') + 1);
    return std::string(character.text());
}

std::string number(std::uint32_t code, unsigned base) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    do {
        text.insert(0, 1, digits[code % base]);
        code /= base;
    } while (code != 0);
    return text;
}

TEST(ScanReferences, EveryNumberIsReadIfXMLAllowsTheCharacter) {
    for (std::uint32_t code = 0; code < 0x112000; ++code) {
        const std::string expected = isAllowed(code) ? encoded(code) : "none";
        ASSERT_EQ(read("&#" + number(code, 10) + ";"), expected);
        ASSERT_EQ(read("&#x" + number(code, 16) + ";rest"), expected);
    }
}

TEST(ScanReferences, TheFiveNamesAreRead) {
    EXPECT_EQ(read("&amp;amp;"), "&");
    EXPECT_EQ(read("&lt;"), "<");
    EXPECT_EQ(read("&gt;>"), ">");
    EXPECT_EQ(read("&quot;"), "\"");
    EXPECT_EQ(read("&apos;"), "'");
}

TEST(ScanReferences, NothingElseIsRead) {
    for (const std::string_view text : {"&"sv,
                                        "&;"sv,
                                        "&#"sv,
                                        "&#;"sv,
                                        "&#x"sv,
                                        "&#x;"sv,
                                        "&amp"sv,
                                        "&amp "sv,
                                        "& amp;"sv,
                                        "&amp ;"sv,
                                        "&AMP;"sv,
                                        "&Lt;"sv,
                                        "&ltt;"sv,
                                        "&l;"sv,
                                        "&nbsp;"sv,
                                        "&euro;"sv,
                                        "&#X41;"sv,
                                        "&#-1;"sv,
                                        "&#+65;"sv,
                                        "&# 65;"sv,
                                        "&#65 ;"sv,
                                        "&#6 5;"sv,
                                        "&#0x41;"sv,
                                        "&#x0x41;"sv,
                                        "&#xx41;"sv,
                                        "&#41h;"sv,
                                        "&#1e1;"sv,
                                        "&#6.5;"sv,
                                        "&#x4G;"sv,
                                        "&#4294967361;"sv,
                                        "&#x100000041;"sv,
                                        "&#99999999999;"sv,
                                        "&&amp;"sv,
                                        "&#65\0;"sv,
                                        "&am\0p;"sv,
                                        "&#000000000000065;"sv,
                                        "&#x00000000000041;"sv}) {
        EXPECT_EQ(read(std::string(text)), "none") << text;
    }
}

TEST(ScanReferences, TheLongestHasSixteenBytes) {
    EXPECT_EQ(longestReference, 16U);
    EXPECT_EQ(read("&#0000000000065;"), "A");
    EXPECT_EQ(read("&#00000000000065;"), "none");
    EXPECT_EQ(read("&#x000000000041;"), "A");
    EXPECT_EQ(read("&#x0000000000041;"), "none");
}

TEST(ScanReferences, CapitalAndSmallDigitsAreTheSame) {
    EXPECT_EQ(read("&#x4a;"), "J");
    EXPECT_EQ(read("&#x4A;"), "J");
    EXPECT_EQ(read("&#xFfFd;"), "\xEF\xBF\xBD");
}

} // namespace
} // namespace pelluvia::xml::scan
