// SPDX-License-Identifier: MIT

#include <Pelluvia/nmea/NMEAUtils.h>

#include <tests/support/LogCapture.h>

#include <cstdio>
#include <gtest/gtest.h>
#include <string>
#include <tests/support/Chance.h>
#include <vector>

namespace pelluvia {
namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;
using testing::LogCapture;

constexpr std::string_view body = "GPGLL,4916.45,N,12311.12,W,225444,A";

std::string xorOf(std::string_view text) {
    unsigned value = 0;
    for (const char c : text) {
        value ^= static_cast<unsigned char>(c);
    }
    char digits[3];
    std::snprintf(digits, sizeof digits, "%02X", value);
    return digits;
}

std::string randomASCII(testing::Chance &random, std::size_t size) {
    std::string text(size, ' ');
    for (char &c : text) {
        c = static_cast<char>(random() % 128);
    }
    return text;
}

TEST(NMEAUtils, ChecksumsAreTheXOROfTheBytes) {
    const struct {
        std::optional<std::string_view> sentence;
        std::uint32_t checksum;
    } known[] = {
        {body, 0x31},
        {"$GPGLL,4916.45,N,12311.12,W,225444,A", 0x15}, // the dollar sign counts
        {"GPGLL,4916.45,N,12311.12,W,225444,A*31", 0x31 ^ '*' ^ '3' ^ '1'},
        {"A", 0x41},
        {"AA", 0},
        {"\0A\0"sv, 0x41},
        {"\x7F\x01", 0x7E},
        {" \r\n", ' ' ^ '\r' ^ '\n'},
        {"", 0},
        {std::nullopt, 0},
        {"GP\u00E9", 0},
        {"GPGLL\x80", 0},
        {"\xFF", 0},
    };
    for (const auto &each : known) {
        EXPECT_EQ(NMEAUtils::checksumFromSentence(each.sentence), each.checksum)
            << each.sentence.value_or("nil");
    }
}

TEST(NMEAUtils, FramesABodyWithItsChecksum) {
    EXPECT_EQ(NMEAUtils::addChecksumToNMEASentence(body), "$"s.append(body) + "*31");
    EXPECT_EQ(NMEAUtils::addChecksumToNMEASentence(""), "$*00");
    EXPECT_EQ(NMEAUtils::addChecksumToNMEASentence("J"), "$J*4A");
    EXPECT_EQ(NMEAUtils::addChecksumToNMEASentence("\x05"), "$\x05*05");
    EXPECT_EQ(NMEAUtils::addChecksumToNMEASentence("$a*"), "$$a**6F");
    EXPECT_EQ(NMEAUtils::addChecksumToNMEASentence("\0%@\n"sv), "$\0%@\n*6F"sv);
}

TEST(NMEAUtils, FramesOnlyASCII) {
    EXPECT_EQ(NMEAUtils::addChecksumToNMEASentence(std::nullopt), std::nullopt);
    EXPECT_EQ(NMEAUtils::addChecksumToNMEASentence("GPWPL,\u00D6lten"), std::nullopt);
    EXPECT_EQ(NMEAUtils::addChecksumToNMEASentence("\x80"), std::nullopt);
}

TEST(NMEAUtils, AcceptsTheseSentences) {
    const struct {
        std::string_view received;
        std::string_view result;
    } accepted[] = {
        // With a checksum: the body alone.
        {"  $GPGLL,4916.45,N,12311.12,W,225444,A*31\r\n", body},
        {"$GPGLL,4916.45,N,12311.12,W,225444,A*31", body},
        {"\t\v\f\u00A0\u3000$J*4A\u2028\u2029\u0085\u1680\u202F\u205F\n", "J"},
        {"$J*4a", "J"},
        {"$J*4A \n", "J"},
        {"$*00", ""},
        {"$*0x", ""}, // the digit before the x
        {"$*0G", ""}, // reading stops at the first character that is no digit
        {"$\x05*5g", "\x05"},
        {"$\x05* 5", "\x05"}, // white space before the number is skipped
        {"$\x05*5\u00E9", "\x05"},
        {"$$J*6E", "$J"},   // only one dollar sign is taken off
        {"$a*b*29", "a*b"}, // the last asterisk splits
        {"$a b\r*2E", "a b\r"},
        {"$\0J\0*4A"sv, "\0J\0"sv},
        // Without one: all that follows the dollar sign, unchecked.
        {"$GPGLL,4916.45,N", "GPGLL,4916.45,N"},
        {"$GPGLL,4916.45,N*3", "GPGLL,4916.45,N*3"},
        {"$GPGLL,4916.45,N*", "GPGLL,4916.45,N*"},
        {"$GPGLL,4916.45,N*318", "GPGLL,4916.45,N*318"},
        {"$GPGLL*31,4916.45,N\r\n", "GPGLL*31,4916.45,N"},
        {"$J*4\u00A0", "J*4"}, // trimmed before the asterisk is looked for
        {"$abc", "abc"},
        {"$GPWPL,\u00D6lten", "GPWPL,\u00D6lten"},
        {"$J*\u00E9", "J*\u00E9"}, // one character, two bytes
        {"$abc\x80\xFF", "abc\x80\xFF"},
        {"$\0\0\0"sv, "\0\0\0"sv},
    };
    for (const auto &each : accepted) {
        EXPECT_EQ(NMEAUtils::checkAndTrimNMEASentence(each.received), each.result)
            << ::testing::PrintToString(each.received);
    }
}

TEST(NMEAUtils, RejectsTheseSentences) {
    const std::optional<std::string_view> rejected[] = {
        std::nullopt,
        "",
        " \t\r\n\u2003",
        // No dollar sign at the start.
        "GPGLL,4916.45,N,12311.12,W,225444,A*31",
        "x$GPGLL,4916.45,N,12311.12,W,225444,A*31",
        "!AIVDM,1,1,,B,x,0*31",
        "\uFEFF$J*4A",
        "\0$J*4A"sv,
        "\u200B\xE2\x80$J*4A",
        "\xE2\x80$J*4A",
        "*4A",
        // The checksum is another's.
        "$GPGLL,4916.45,N,12311.12,W,225444,A*3F",
        "$GPGLL,4916.45,N,12311.12,W,225444,A*3f",
        "$GPGLL,4916.45,N,12311.12,W,225444,B*31",
        "$J*A4",
        "$J* 4",
        "$*01",
        "$J*4G", // reads as 4
        // No digit to read.
        "$J*GG",
        "$J*,,",
        "$J*-4",
        "$J*+4",
        "$J***",
        "$J**4",
        "$J*\U0001F600", // two units
        "$J*\u00E9\u00E9",
        "$J*\xFF\xFE",
        "$J*\0\0"sv,
        "$*xx",
        // The body of a sentence with a checksum is not ASCII.
        "$\u00D6*00",
        "$\u00D6*55", // the XOR of its bytes
        "$J\x80*CA",
        "$\xFF*FF",
        // Fewer than three characters behind the dollar sign.
        "$",
        "$\r\n",
        "$J*",
        "$J",
        "$*",
        "$**",
        "$*0 ",
        "$\U0001F600",
        "$\u00D6l", // three bytes
        "$\xFF\xFF",
    };
    for (const auto &each : rejected) {
        EXPECT_EQ(NMEAUtils::checkAndTrimNMEASentence(each), std::nullopt)
            << ::testing::PrintToString(each.value_or("nil"));
    }
}

TEST(NMEAUtils, LogsASentenceOfMoreThan82CharactersOnceAndGoesOn) {
    const std::string text(78, 'a'); // the XOR of an even number of them is 0
    const std::string valid = "$" + text + "\r*0D";
    ASSERT_EQ(valid.size(), 83U);

    const LogCapture log;
    EXPECT_EQ(NMEAUtils::checkAndTrimNMEASentence(valid), text + "\r");
    // The message's own line end is the end of the log's line; a control character in the sentence
    // becomes a space on its way.
    EXPECT_EQ(log.lines, std::vector{"NMEA Sentence exceeds 82 chars: $" + text + " *0D"});
    EXPECT_EQ(NMEAUtils::checkAndTrimNMEASentence("$" + text + "\r*0E"), std::nullopt);
    EXPECT_EQ(log.lines.size(), 2U);
    EXPECT_EQ(NMEAUtils::checkAndTrimNMEASentence(std::string(83, 'x')), std::nullopt);
    EXPECT_EQ(log.lines.size(), 3U);
}

TEST(NMEAUtils, LogsTheSentenceAsItWasReceived) {
    const LogCapture log;
    const std::string padded = std::string(40, ' ') + "$J*4A" + std::string(38, ' ');
    ASSERT_EQ(padded.size(), 83U);
    EXPECT_EQ(NMEAUtils::checkAndTrimNMEASentence(padded), "J");
    EXPECT_EQ(log.lines, std::vector{"NMEA Sentence exceeds 82 chars: " + padded});

    const std::string blank(83, ' ');
    EXPECT_EQ(NMEAUtils::checkAndTrimNMEASentence(blank), std::nullopt);
    EXPECT_EQ(log.lines.size(), 2U);
}

TEST(NMEAUtils, LogsTheLineEndOfASentenceAsTheEndOfTheLine) {
    const LogCapture log;
    const std::string text(78, 'a');
    EXPECT_EQ(NMEAUtils::checkAndTrimNMEASentence("$" + text + "*00\r\n"), text);
    EXPECT_EQ(log.lines, std::vector{"NMEA Sentence exceeds 82 chars: $" + text + "*00"});
}

TEST(NMEAUtils, LogsNothingForASentenceOf82Characters) {
    const LogCapture log;
    const std::string text(78, 'a');
    EXPECT_EQ(NMEAUtils::checkAndTrimNMEASentence("$" + text + "*00"), text);
    EXPECT_EQ(NMEAUtils::checkAndTrimNMEASentence("nonsense"), std::nullopt);
    EXPECT_EQ(NMEAUtils::checkAndTrimNMEASentence("$J*00"), std::nullopt);
    EXPECT_TRUE(log.lines.empty());
}

TEST(NMEAUtils, MeasuresTheLengthInCharactersNotBytes) {
    const LogCapture log;
    std::string euros = "$";
    for (int i = 0; i < 81; ++i) {
        euros += "\u20AC";
    }
    EXPECT_EQ(NMEAUtils::checkAndTrimNMEASentence(euros), euros.substr(1));
    EXPECT_TRUE(log.lines.empty());
    EXPECT_TRUE(NMEAUtils::checkAndTrimNMEASentence(euros + "\u20AC"));
    EXPECT_EQ(log.lines.size(), 1U);

    std::string faces = "$";
    for (int i = 0; i < 41; ++i) {
        faces += "\U0001F600";
    }
    EXPECT_TRUE(NMEAUtils::checkAndTrimNMEASentence(faces));
    EXPECT_EQ(log.lines.size(), 2U);
}

TEST(NMEAUtils, EveryFramedBodyValidates) {
    const LogCapture log;
    testing::Chance random(5);
    for (int round = 0; round < 20'000; ++round) {
        const std::string text = randomASCII(random, random() % 100);
        const auto framed = NMEAUtils::addChecksumToNMEASentence(text);
        ASSERT_EQ(framed, "$" + text + "*" + xorOf(text));
        ASSERT_EQ(NMEAUtils::checkAndTrimNMEASentence("\n " + *framed + "\r\n"), text);
    }
}

TEST(NMEAUtils, NoSingleChangedCharacterPasses) {
    const std::string sentence = "$"s.append(body) + "*31";
    for (std::size_t position = 1; position < sentence.size(); ++position) {
        if (sentence[position] == '*' && position + 3 == sentence.size()) {
            continue; // without it there is no checksum
        }
        for (int c = '0'; c <= 'z'; ++c) {
            std::string changed = sentence;
            changed[position] = static_cast<char>(c);
            EXPECT_EQ(NMEAUtils::checkAndTrimNMEASentence(changed).has_value(), changed == sentence)
                << changed;
        }
    }
}

TEST(NMEAUtils, SurvivesAnyBytes) {
    const LogCapture log;
    testing::Chance random(83);
    constexpr std::string_view common = "$*0Aa \r\n\xE2\x80\xA8\xC2\x85\xF0\x9F\x98";
    for (int round = 0; round < 100'000; ++round) {
        std::string line(random() % 24, ' ');
        for (char &c : line) {
            c = random() % 2 == 0 ? common[random() % common.size()]
                                  : static_cast<char>(random() % 256);
        }
        if (const auto result = NMEAUtils::checkAndTrimNMEASentence(line)) {
            ASSERT_NE(line.find("$" + *result), std::string::npos);
        }
        const auto framed = NMEAUtils::addChecksumToNMEASentence(line);
        if (framed) {
            ASSERT_EQ(NMEAUtils::checkAndTrimNMEASentence(framed), line);
        } else {
            ASSERT_EQ(NMEAUtils::checksumFromSentence(line), 0U);
        }
    }
}

TEST(NMEAUtils, TakesVeryLongLines) {
    const LogCapture log;
    const std::string text(std::size_t{1} << 22, 'a');
    EXPECT_EQ(NMEAUtils::checkAndTrimNMEASentence("$" + text + "*00"), text);
    EXPECT_EQ(NMEAUtils::checkAndTrimNMEASentence(std::string(std::size_t{1} << 22, '\n')),
              std::nullopt);
    EXPECT_EQ(log.lines.size(), 2U);
}

} // namespace
} // namespace pelluvia
