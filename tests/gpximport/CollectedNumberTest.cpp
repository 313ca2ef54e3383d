// SPDX-License-Identifier: MIT

#include <Pelluvia/gpximport/internal/CollectedNumber.h>

#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <string>

namespace pelluvia {
namespace {

template <class Number>
Number valueOf(std::string_view text) {
    CollectedNumber<Number> number;
    number.set(text);
    const Number value = number.value();
    EXPECT_EQ(number.value(), value);
    return value;
}

TEST(CollectedNumber, IsZeroAtFirst) {
    EXPECT_EQ(CollectedNumber<std::int32_t>().value(), 0);
    EXPECT_EQ(CollectedNumber<float>().value(), 0.0F);
    EXPECT_EQ(CollectedNumber<double>().value(), 0.0);
}

TEST(CollectedNumber, ReadsAsTheScannerDoes) {
    EXPECT_EQ(valueOf<std::int32_t>(" 120 bpm"), 120);
    EXPECT_EQ(valueOf<std::int32_t>("21.9"), 21);
    EXPECT_EQ(valueOf<std::int32_t>("99999999999"), std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(valueOf<float>("21.9"), 21.9F);
    EXPECT_EQ(valueOf<double>("21.9"), 21.9);
    EXPECT_EQ(valueOf<double>(std::string(1000, '0') + "7.5"), 7.5);
}

TEST(CollectedNumber, IsZeroForATextThatIsNoNumber) {
    CollectedNumber<std::int32_t> number;
    for (const std::string &text : {std::string("abc"), std::string(), std::string(1000, ' ')}) {
        number.set("7");
        number.set(text);
        EXPECT_EQ(number.value(), 0);
        number.set("7");
        EXPECT_EQ(number.value(), 7);
        number.set(text);
        EXPECT_EQ(number.value(), 0);
    }
}

TEST(CollectedNumber, IsZeroWhenItIsClearedBeforeAndAfterItIsRead) {
    CollectedNumber<float> number;
    number.set("7");
    number.clear();
    EXPECT_EQ(number.value(), 0.0F);
    number.set("7");
    EXPECT_EQ(number.value(), 7.0F);
    number.clear();
    EXPECT_EQ(number.value(), 0.0F);
}

} // namespace
} // namespace pelluvia
