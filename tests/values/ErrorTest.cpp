// SPDX-License-Identifier: MIT

#include <Pelluvia/values/Error.h>

#include <gtest/gtest.h>
#include <limits>

namespace pelluvia {
namespace {

TEST(Error, HasDomainCodeAndUserInformationInOrder) {
    const ErrorPtr inner = Error::make("inner", 1);
    const ErrorPtr error = Error::make("domain", -3,
                                       {{"text", std::string("value")},
                                        {"line", std::int64_t{12}},
                                        {std::string(NSUnderlyingErrorKey), inner}});
    EXPECT_EQ(error->domain(), "domain");
    EXPECT_EQ(error->code(), -3);
    ASSERT_EQ(error->userInfo().size(), 3U);
    EXPECT_EQ(error->userInfo()[0].first, "text");
    EXPECT_EQ(error->userInfo()[1].first, "line");
    EXPECT_EQ(error->userInfo()[2].first, NSUnderlyingErrorKey);
    EXPECT_EQ(error->underlyingError(), inner);
}

TEST(Error, FindsByKey) {
    const Error error("domain", 1,
                      {{"a", std::string("first")}, {"a", std::string("second")}, {"n", 5}});
    ASSERT_NE(error.find("a"), nullptr);
    EXPECT_EQ(std::get<std::string>(*error.find("a")), "first");
    EXPECT_EQ(error.find("b"), nullptr);
    EXPECT_EQ(error.find(""), nullptr);
    EXPECT_EQ(error.integer("n"), 5);
}

TEST(Error, TreatsAValueOfAnotherTypeAsNotGiven) {
    const Error error("domain", 7,
                      {{"text", std::string("12")},
                       {std::string(NSLocalizedDescriptionKey), std::int64_t{1}},
                       {std::string(NSUnderlyingErrorKey), std::string("no error")}});
    EXPECT_EQ(error.integer("text"), 0);
    EXPECT_EQ(error.integer("missing"), 0);
    EXPECT_EQ(error.localizedDescription(), "domain error 7");
    EXPECT_EQ(error.underlyingError(), nullptr);
}

TEST(Error, DescribesItselfByItsTextOrByDomainAndCode) {
    const Error described("domain", 1,
                          {{std::string(NSLocalizedDescriptionKey), std::string("It failed")}});
    EXPECT_EQ(described.localizedDescription(), "It failed");
    EXPECT_EQ(Error("domain", -1).localizedDescription(), "domain error -1");
    EXPECT_EQ(Error("d", std::numeric_limits<std::int64_t>::min()).localizedDescription(),
              "d error -9223372036854775808");
}

TEST(Error, StaysWholeWhenItIsCopiedOrMovedFrom) {
    Error first("domain", 1, {{std::string(NSFilePathErrorKey), "/a"}});
    const Error copy = first;
    Error moved = std::move(first);
    EXPECT_EQ(first.domain(), "domain"); // NOLINT(bugprone-use-after-move): documented
    EXPECT_EQ(copy.userInfo().size(), 1U);
    moved = Error("other", 2);
    EXPECT_EQ(moved.code(), 2);
    EXPECT_EQ(copy.code(), 1);
    EXPECT_EQ(first.userInfo().size(), 1U);
}

} // namespace
} // namespace pelluvia
