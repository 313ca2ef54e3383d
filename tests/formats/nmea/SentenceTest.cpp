// SPDX-License-Identifier: MIT

#include <Pelluvia/formats/nmea/read/Sentence.h>

#include <gtest/gtest.h>
#include <string>

namespace pelluvia::nmea {
namespace {

TEST(Sentence, IsTakenApartIntoTalkerTypeAndFields) {
    Sentence sentence;
    ASSERT_EQ(sentence.read("$GPGLL,4916.45,N,12311.12,W,225444,A*31"), LineKind::Sentence);
    EXPECT_EQ(sentence.talker(), "GP");
    EXPECT_EQ(sentence.type(), SentenceType::GLL);
    EXPECT_EQ(sentence.fieldCount(), 6U);
    EXPECT_EQ(sentence.field(1), "4916.45");
    EXPECT_EQ(sentence.field(6), "A");
    EXPECT_EQ(sentence.field(7), "");
    EXPECT_EQ(sentence.field(1000), "");
    EXPECT_TRUE(sentence.hasChecksum());
}

TEST(Sentence, KeepsEmptyFields) {
    Sentence sentence;
    ASSERT_EQ(sentence.read("$GPGGA,,,"), LineKind::Sentence);
    EXPECT_EQ(sentence.fieldCount(), 3U);
    EXPECT_FALSE(sentence.hasChecksum());
    ASSERT_EQ(sentence.read("$GPGGA"), LineKind::Sentence);
    EXPECT_EQ(sentence.type(), SentenceType::GGA);
    EXPECT_EQ(sentence.fieldCount(), 0U);
    ASSERT_EQ(sentence.read("$GPGGA,"), LineKind::Sentence);
    EXPECT_EQ(sentence.fieldCount(), 1U);
}

TEST(Sentence, IsUnderstoodWhoeverTalks) {
    Sentence sentence;
    for (const char *talker : {"GP", "GN", "GL", "GA", "GB", "BD", "QZ", "II", "IN", "HC", "XX"}) {
        ASSERT_EQ(sentence.read(std::string("$") + talker + "ZDA,,,,"), LineKind::Sentence);
        EXPECT_EQ(sentence.type(), SentenceType::ZDA) << talker;
        EXPECT_EQ(sentence.talker(), talker);
    }
}

TEST(Sentence, OfAnotherTypeHasNoFields) {
    Sentence sentence;
    for (const char *line : {"$GPGSV,1,1,00", "$PGRME,1,M", "$PQGSA,A,1", "$GPN,000", "$GPGGAX,1",
                             "$GGA,1", "$gpgga,1", "$GP,1", "$,,,", "$GPTXT,a*b,c"}) {
        ASSERT_EQ(sentence.read(line), LineKind::Sentence) << line;
        EXPECT_EQ(sentence.type(), SentenceType::Other) << line;
        EXPECT_EQ(sentence.fieldCount(), 0U) << line;
        EXPECT_EQ(sentence.talker(), "") << line;
    }
}

TEST(Sentence, WithAWrongOrUnreadableChecksumIsDamaged) {
    Sentence sentence;
    for (const char *line :
         {"$GPGLL,4916.45,N,12311.12,W,225444,A*32", "$GPGLL,4916.46,N,12311.12,W,225444,A*31",
          "$GPGLL,4916.45*XY", "$GNVTG,,T,,M,0.145,N,0.269,K,A*3)", "  $GPGSV,1*00\r"}) {
        EXPECT_EQ(sentence.read(line), LineKind::BadChecksum) << line;
    }
}

TEST(Sentence, WhoseChecksumHasLostADigitIsDamaged) {
    Sentence sentence;
    EXPECT_EQ(sentence.read("$GPGLL,4916.45,N,12311.12,W,225444,A*3"), LineKind::BadChecksum);
    EXPECT_EQ(sentence.read("$GPGLL,4916.45,N,12311.12,W,225444,A*"), LineKind::BadChecksum);
}

TEST(Sentence, IsToldFromOtherLines) {
    using namespace std::string_literals;
    Sentence sentence;
    EXPECT_EQ(sentence.read("!AIVDM,1,1,,A,13aEOK?P00PD2wVMdLDRhgvL289?,0*26"), LineKind::Foreign);
    EXPECT_EQ(sentence.read("# Name: a receiver"), LineKind::Garbage);
    EXPECT_EQ(sentence.read("$"), LineKind::Garbage);
    EXPECT_EQ(sentence.read("$A"), LineKind::Garbage);
    EXPECT_EQ(sentence.read("\0\0\xFF\x80"s), LineKind::Garbage);
    EXPECT_EQ(sentence.read(""), LineKind::Blank);
    EXPECT_EQ(sentence.read(" \t "), LineKind::Blank);
}

TEST(Sentence, CanBeReadAgainAndAgain) {
    Sentence sentence;
    ASSERT_EQ(sentence.read("$GPGLL,4916.45,N,12311.12,W,225444,A*31"), LineKind::Sentence);
    ASSERT_EQ(sentence.read("$GPGSA,A,3"), LineKind::Sentence);
    EXPECT_EQ(sentence.type(), SentenceType::GSA);
    EXPECT_EQ(sentence.fieldCount(), 2U);
    EXPECT_FALSE(sentence.hasChecksum());
}

} // namespace
} // namespace pelluvia::nmea
