// SPDX-License-Identifier: MIT

#pragma once

#include <array>
#include <cstddef>
#include <gtest/gtest.h>
#include <span>
#include <string>
#include <string_view>
#include <tests/support/XMLEngineComparison.h>

/// \file
/// Tables of XML documents that both engines must read alike.

namespace pelluvia::testing {

/// What becomes of a document.
enum class XMLVerdict {
    scanned,   ///< well-formed and usual: the scanner reads it
    accepted,  ///< well-formed and unusual: the library reads it
    malformed, ///< an error
};

/// One document, and what becomes of it. The text may hold zeros.
struct XMLCase {
    std::string_view text;
    XMLVerdict verdict;
};

/// Small windows, so that every piece of markup is cut somewhere; and the one that is used.
inline constexpr std::array<std::size_t, 7> someWindowSizes = {
    17, 18, 21, 33, 64, 200, xml::scan::ScanEngine::usualWindowSize};

/// Runs a document through both engines with several windows; and as a part of one that repeats it.
inline void expectVerdict(const std::string &text, XMLVerdict verdict) {
    for (const std::size_t windowSize : someWindowSizes) {
        const XMLEngineComparison comparison(text, windowSize);
        EXPECT_EQ(comparison.difference(), "") << text << "\nwindow: " << windowSize;
        EXPECT_EQ(comparison.isWellFormed(), verdict != XMLVerdict::malformed) << text;
        if (verdict != XMLVerdict::scanned) {
            EXPECT_FALSE(comparison.isScanned()) << text << "\nwindow: " << windowSize;
        } else if (windowSize == xml::scan::ScanEngine::usualWindowSize) {
            EXPECT_TRUE(comparison.isScanned()) << text;
        }
        if (text.size() < 1000) {
            const XMLEngineComparison repeated(XMLEngineComparison::repeated(text), windowSize);
            EXPECT_EQ(repeated.difference(), "") << text << "\nrepeated, window: " << windowSize;
        }
    }
}

inline void expectVerdicts(std::span<const XMLCase> cases) {
    for (const XMLCase &each : cases) {
        expectVerdict(std::string(each.text), each.verdict);
    }
}

} // namespace pelluvia::testing
