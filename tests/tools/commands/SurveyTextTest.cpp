// SPDX-License-Identifier: MIT

#include <tools/pelluvia/commands/SurveyText.h>

#include <gtest/gtest.h>

namespace pelluvia::host {
namespace {

TEST(SurveyText, TimesAreInUTC) {
    EXPECT_EQ(utcText(0), "1970-01-01T00:00:00Z");
    EXPECT_EQ(utcText(1591000000), "2020-06-01T08:26:40Z");
    EXPECT_EQ(utcText(-1), "1969-12-31T23:59:59Z");
    EXPECT_EQ(utcText(951782400), "2000-02-29T00:00:00Z");
}

TEST(SurveyText, YearsHaveAtLeastFourDigits) {
    EXPECT_EQ(utcText(-62135596800), "0001-01-01T00:00:00Z");
    EXPECT_EQ(utcText(-62167219200), "0000-01-01T00:00:00Z");
    EXPECT_EQ(utcText(-62167219201), "-0001-12-31T23:59:59Z");
    EXPECT_EQ(utcText(253402300800), "10000-01-01T00:00:00Z");
}

} // namespace
} // namespace pelluvia::host
