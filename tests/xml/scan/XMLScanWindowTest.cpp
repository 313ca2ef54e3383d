// SPDX-License-Identifier: MIT

#include <Pelluvia/xml/internal/scan/Bytes.h>
#include <Pelluvia/xml/internal/scan/Window.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <gtest/gtest.h>
#include <string>
#include <tests/support/XMLSources.h>

namespace pelluvia::xml::scan {
namespace {

using testing::TextSource;

std::string content(const Window &window) {
    return {window.cursor(), static_cast<std::size_t>(window.end() - window.cursor())};
}

void expectZeros(const Window &window) {
    EXPECT_TRUE(std::all_of(window.end(), window.end() + padding, [](char c) { return c == 0; }));
}

std::string digits(std::size_t size) {
    std::string text;
    while (text.size() < size) {
        text += static_cast<char>('0' + text.size() % 10);
    }
    return text;
}

TEST(ScanWindow, IsEmptyAtFirst) {
    TextSource source("abc");
    Input input(source);
    ASSERT_TRUE(input.begin());
    const Window window(input, 100);
    EXPECT_EQ(content(window), "");
    EXPECT_FALSE(window.atEnd());
    EXPECT_TRUE(window.holds(0));
    EXPECT_FALSE(window.holds(1));
    EXPECT_EQ(window.offset(window.cursor()), 0U);
    expectZeros(window);
}

TEST(ScanWindow, HoldsASmallDocumentAtOnce) {
    TextSource source("abc", 1);
    Input input(source);
    ASSERT_TRUE(input.begin());
    Window window(input, 100);
    EXPECT_TRUE(window.more());
    EXPECT_EQ(content(window), "abc");
    EXPECT_TRUE(window.holds(3));
    EXPECT_FALSE(window.holds(4));
    expectZeros(window);
    EXPECT_FALSE(window.more());
    EXPECT_TRUE(window.atEnd());
    EXPECT_EQ(content(window), "abc") << "nothing is lost at the end";
    window.moveTo(window.end());
    EXPECT_EQ(window.offset(window.cursor()), 3U);
    EXPECT_FALSE(window.more());
    EXPECT_EQ(window.offset(window.end()), 3U);
    expectZeros(window);
}

/// Whatever is kept and however large the window: the text comes whole and in its place.
TEST(ScanWindow, MovesOverTheText) {
    const std::string text = digits(1000);
    for (std::size_t size = 16; size < 70; ++size) {
        for (const std::size_t kept : {0U, 1U, 5U}) {
            for (const std::size_t step : {1U, 7U, 1000U}) {
                TextSource source(text, step);
                Input input(source);
                ASSERT_TRUE(input.begin());
                Window window(input, size);
                std::string seen;
                while (true) {
                    const bool isMore = window.more();
                    EXPECT_LE(content(window).size(), size);
                    EXPECT_EQ(window.offset(window.cursor()), seen.size());
                    EXPECT_EQ(content(window), text.substr(seen.size(), content(window).size()));
                    expectZeros(window);
                    if (!isMore) {
                        break;
                    }
                    const std::size_t passed =
                        content(window).size() - std::min(kept, content(window).size() - 1);
                    seen += content(window).substr(0, passed);
                    window.moveTo(window.cursor() + passed);
                }
                if (size >= 16 + kept) {
                    EXPECT_EQ(seen + content(window), text) << size << " " << kept;
                    EXPECT_TRUE(window.atEnd());
                }
            }
        }
    }
}

TEST(ScanWindow, SaysWhenItIsFullAndThatThisIsNotTheEnd) {
    TextSource source(digits(100));
    Input input(source);
    ASSERT_TRUE(input.begin());
    Window window(input, 40);
    EXPECT_TRUE(window.more());
    EXPECT_GT(content(window).size(), 40U - 16U);
    const std::string held = content(window);
    EXPECT_FALSE(window.more());
    EXPECT_FALSE(window.atEnd());
    EXPECT_EQ(content(window), held);
    window.moveTo(window.cursor() + 20);
    EXPECT_TRUE(window.more());
    EXPECT_EQ(content(window).substr(0, 5), "01234");
    EXPECT_EQ(window.offset(window.cursor()), 20U);
}

TEST(ScanWindow, GivesLineEndsAsOneLF) {
    TextSource source("\xEF\xBB\xBF"
                      "a\r\nb\rc\n",
                      1);
    Input input(source);
    ASSERT_TRUE(input.begin());
    Window window(input, 100);
    EXPECT_TRUE(window.more());
    EXPECT_EQ(content(window), "a\nb\nc\n");
}

TEST(ScanWindow, EndsWhereTheSourceFails) {
    TextSource source("abc", 2, EIO);
    Input input(source);
    static_cast<void>(input.begin());
    Window window(input, 100);
    EXPECT_TRUE(window.more());
    EXPECT_EQ(content(window), "abc");
    EXPECT_FALSE(window.more());
    EXPECT_TRUE(window.atEnd());
    EXPECT_TRUE(input.failure());
}

} // namespace
} // namespace pelluvia::xml::scan
