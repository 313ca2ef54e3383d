// SPDX-License-Identifier: MIT

// Numbers read and write the same where the process has a locale with a decimal comma.

#include <Pelluvia/text/NumberText.h>
#include <Pelluvia/text/Scanner.h>
#include <Pelluvia/text/Text.h>
#include <Pelluvia/values/Error.h>

#include <array>
#include <cstdio>
#include <gtest/gtest.h>
#include <string>
#include <tests/support/MadeLocale.h>

namespace pelluvia {
namespace {

template <class Number>
std::string written(char *(*write)(char *, Number) noexcept, Number value) {
    std::array<char, maxFixedText> buffer;
    return {buffer.data(), write(buffer.data(), value)};
}

TEST(CommaLocale, ChangesNoNumber) {
    const testing::MadeLocale locale("UTF-8");
    if (!locale.isInUse()) {
        GTEST_SKIP() << "localedef or its sources are missing";
    }
    std::array<char, 32> buffer;
    (void)std::snprintf(buffer.data(), buffer.size(), "%f", 1234.5); // NOLINT
    ASSERT_STREQ(buffer.data(), "1234,500000"); // the locale is a different one indeed

    EXPECT_EQ(written(writeGeneral, -47.123456789012), "-47.12345679");
    EXPECT_EQ(written(writeGeneral, 1.5e-7), "1.5e-07");
    EXPECT_EQ(written(writeFixed, 1234.5), "1234.500000");
    EXPECT_EQ(written(writeInteger, std::int64_t{1234567}), "1234567");
    EXPECT_EQ(written(writeTwoDigits, std::int64_t{7}), "07");

    EXPECT_EQ(doubleValue("1.5"), 1.5);
    EXPECT_EQ(doubleValue("1,5"), 1.0);
    EXPECT_EQ(doubleValue("1.234.567"), 1.234);
    EXPECT_EQ(intValue("1.234"), 1);
    Scanner scanner("1.5,2.5e1 -3");
    EXPECT_EQ(scanner.scanFloat(), 1.5F);
    scanner.skip(1);
    EXPECT_EQ(scanner.scanDouble(), 25.0);
    EXPECT_EQ(scanner.scanInt(), -3);

    EXPECT_EQ(Error("domain", -1234567).localizedDescription(), "domain error -1234567");
}

TEST(CommaLocale, OfOneByteCharactersChangesNoWhiteSpace) {
    const testing::MadeLocale locale("ISO-8859-1");
    if (!locale.isInUse()) {
        GTEST_SKIP() << "localedef or its sources are missing";
    }
    EXPECT_EQ(leadingWhiteSpace("\xC2\xA0|"), 2U);
    EXPECT_EQ(leadingWhiteSpace("\xA0|"), 0U); // a space in ISO-8859-1, nothing in UTF-8
}

} // namespace
} // namespace pelluvia
