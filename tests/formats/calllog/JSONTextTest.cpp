// SPDX-License-Identifier: MIT

#include <Pelluvia/formats/calllog/JSONText.h>

#include <tests/support/TemporaryFolder.h>

#include <bit>
#include <charconv>
#include <cmath>
#include <functional>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <tests/support/Chance.h>

namespace pelluvia {
namespace {

std::string written(const std::function<void(JSONText &)> &write) {
    const testing::TemporaryFolder folder;
    std::error_code error;
    const auto file = OutputFile::open(folder.file("text"), error);
    JSONText text(*file);
    write(text);
    EXPECT_FALSE(file->close());
    return testing::readFile(folder.file("text"));
}

std::string realText(double value) {
    return written([value](JSONText &text) { text.real(value); });
}
std::string realText(float value) {
    return written([value](JSONText &text) { text.real(value); });
}
std::string stringText(std::string_view value) {
    return written([value](JSONText &text) { text.string(value); });
}

TEST(JSONText, ARealHasAPointOrAnExponentAndTheFewestDigits) {
    EXPECT_EQ(realText(47.1), "47.1");
    EXPECT_EQ(realText(0.1), "0.1");
    EXPECT_EQ(realText(430.0), "430.0");
    EXPECT_EQ(realText(0.0), "0.0");
    EXPECT_EQ(realText(-0.0), "-0.0");
    EXPECT_EQ(realText(1.0 / 3.0), "0.3333333333333333");
    EXPECT_EQ(realText(1e22), "1e+22");
    EXPECT_EQ(realText(1e-7), "1e-07");
    EXPECT_EQ(realText(5e-324), "5e-324");
    EXPECT_EQ(realText(-1.7976931348623157e308), "-1.7976931348623157e+308");
    EXPECT_EQ(realText(9007199254740993.0), "9007199254740992.0");
}

TEST(JSONText, A32BitFloatHasTheDigitsThatItNeeds) {
    EXPECT_EQ(realText(0.1F), "0.1");
    EXPECT_EQ(realText(21.5F), "21.5");
    EXPECT_EQ(realText(3.0F), "3.0");
    EXPECT_EQ(realText(1.0F / 3.0F), "0.33333334");
    EXPECT_EQ(realText(3.4028235e38F), "3.4028235e+38");
}

TEST(JSONText, WhatIsNotFiniteIsAnObject) {
    EXPECT_EQ(realText(std::nan("")), R"({"real":"NaN"})");
    EXPECT_EQ(realText(-std::nan("")), R"({"real":"NaN"})");
    EXPECT_EQ(realText(std::numeric_limits<double>::infinity()), R"({"real":"Infinity"})");
    EXPECT_EQ(realText(-std::numeric_limits<float>::infinity()), R"({"real":"-Infinity"})");
}

TEST(JSONText, EveryRealReadsBackToTheSameBits) {
    testing::Chance random(2024);
    for (int i = 0; i < 200'000; ++i) {
        const auto value = std::bit_cast<double>(random());
        if (!std::isfinite(value)) {
            continue;
        }
        char text[JSONText::maxRealText];
        const char *end = JSONText::writeReal(text, value);
        double back = 0;
        const auto result = std::from_chars(text, end, back);
        ASSERT_EQ(result.ptr, end);
        ASSERT_EQ(std::bit_cast<std::uint64_t>(back), std::bit_cast<std::uint64_t>(value));
    }
}

TEST(JSONText, IntegersAreWrittenWhole) {
    EXPECT_EQ(written([](JSONText &text) { text.integer(INT64_MIN); }), "-9223372036854775808");
    EXPECT_EQ(written([](JSONText &text) { text.integer(0); }), "0");
    EXPECT_EQ(written([](JSONText &text) { text.integer(INT64_MAX); }), "9223372036854775807");
}

TEST(JSONText, StringsAreEscapedWhereJSONAsksForItAndNowhereElse) {
    EXPECT_EQ(stringText(""), R"("")");
    EXPECT_EQ(stringText("Morning ride / <b>&'"), R"("Morning ride / <b>&'")");
    EXPECT_EQ(stringText("a\"b\\c"), R"("a\"b\\c")");
    EXPECT_EQ(stringText("\b\f\n\r\t"), R"("\b\f\n\r\t")");
    EXPECT_EQ(stringText(std::string_view("\0\x01\x1F", 3)), R"("\u0000\u0001\u001f")");
    EXPECT_EQ(stringText("\x7F"), "\"\x7F\"");
    EXPECT_EQ(stringText("Z\xC3\xBCrich \xE2\x80\xA8 \xF0\x9F\x9A\xB2"),
              "\"Z\xC3\xBCrich \xE2\x80\xA8 \xF0\x9F\x9A\xB2\"");
}

TEST(JSONText, EachByteThatIsNotUTF8IsReplaced) {
    EXPECT_EQ(stringText("a\xFF"
                         "b"),
              "\"a\xEF\xBF\xBD"
              "b\"");
    EXPECT_EQ(stringText("\xED\xA0\x80"), "\"\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\"");
    EXPECT_EQ(stringText("\xC3"), "\"\xEF\xBF\xBD\"");
    EXPECT_EQ(stringText("\xC3\""), "\"\xEF\xBF\xBD\\\"\"");
}

} // namespace
} // namespace pelluvia
