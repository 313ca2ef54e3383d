// SPDX-License-Identifier: MIT

#include <Pelluvia/values/ErrorText.h>

#include <gtest/gtest.h>

namespace pelluvia {
namespace {

TEST(ErrorText, TellsDomainCodeAndDescription) {
    EXPECT_EQ(logTextOf(Error::make(
                  "mine", -3, {{std::string(NSLocalizedDescriptionKey), std::string("a word")}})),
              "Error Domain=mine Code=-3 \"a word\"");
    EXPECT_EQ(logTextOf(Error::make("mine", 7)), "Error Domain=mine Code=7 \"mine error 7\"");
    EXPECT_EQ(logTextOf(nullptr), "(null)");
}

} // namespace
} // namespace pelluvia
