// SPDX-License-Identifier: MIT

#include <Pelluvia/xml/XMLParser.h>

#include <cstddef>
#include <gtest/gtest.h>
#include <string>
#include <tests/support/XMLCase.h>

/// \file
/// Names, values and texts of any length, and as many of things as there may be.

namespace pelluvia {
namespace {

using testing::expectVerdict;
using enum testing::XMLVerdict;

TEST(XMLScanCases, NamesOfAnyLength) {
    for (const std::size_t size : {1U, 499U, 500U, 501U, 49'999U, 50'000U, 50'001U, 60'000U}) {
        const std::string name(size, 'n');
        const auto verdict = size <= 500 ? scanned : size <= 50'000 ? accepted : malformed;
        expectVerdict("<" + name + "/>", verdict);
        expectVerdict("<a " + name + "='1'/>", verdict);
        expectVerdict("<a><?" + name + "?></a>",
                      size > 1 && verdict == scanned ? accepted : verdict);
    }
    // With prefixes the whole name counts here, and each part there.
    for (const std::size_t size : {1U, 494U, 495U, 50'000U, 50'001U, 60'000U}) {
        const std::string prefix(size, 'p');
        const auto verdict = size + 6 <= 500 ? scanned : size <= 50'000 ? accepted : malformed;
        expectVerdict("<a xmlns:" + prefix + "='u'/>", verdict);
        expectVerdict("<" + prefix + ":abcde/>", verdict);
        expectVerdict("<a " + prefix + ":abcde='1'/>", verdict);
    }
}

TEST(XMLScanCases, ValuesAndTextsOfAnyLength) {
    for (const std::size_t size : {0U, 15U, 16U, 4095U, 4096U, 100'000U}) {
        const std::string text(size, 'x');
        expectVerdict("<a b='" + text + "'>" + text + "</a>", scanned);
        expectVerdict("<a><!--" + text + "--><![CDATA[" + text + "]]></a>", scanned);
        expectVerdict("<a><?p " + text + "?></a>", size < 100 ? scanned : accepted);
        expectVerdict("<a xmlns='" + text + "'/>", size <= 500 ? scanned : accepted);
        const std::string blanks(size / 4, ' ');
        expectVerdict(blanks + "<a" + blanks + " >" + blanks + "</a" + blanks + ">" + blanks,
                      scanned);
    }
    expectVerdict("<a b='" + std::string(200'000, 'x') + "'/>", accepted);
    expectVerdict("<a>" + std::string(130'000, 'x') + "</a>", scanned);
    expectVerdict("<a>" + std::string(132'000, 'x') + "</a>", accepted);
    const auto inPieces = [](int count) {
        std::string text = "<a>";
        for (int i = 0; i < count; ++i) {
            text.append(100'000, 'x').append("<!---->");
        }
        return text + "</a>";
    };
    expectVerdict(inPieces(10), scanned);
    expectVerdict(inPieces(11), accepted);
    expectVerdict(std::string(900'000, '\n') + "<a/>", scanned);
    expectVerdict(std::string(1'100'000, '\n') + "<a/>", accepted);
    expectVerdict("<a/>" + std::string(1'100'000, '\n'), accepted);
}

TEST(XMLScanCases, AsManyAttributesDeclarationsAndLevelsAsThereMayBe) {
    std::string attributes;
    std::string declarations;
    for (int i = 1; i <= 41; ++i) {
        const auto verdict = i <= 40 ? scanned : accepted;
        attributes.append(" a").append(std::to_string(i)).append("='1'");
        declarations.append(" xmlns:a").append(std::to_string(i)).append("='u'");
        expectVerdict("<a" + attributes + "/>", verdict);
        expectVerdict("<a" + declarations + "/>", verdict);
        expectVerdict("<a" + attributes + declarations + "/>", verdict);
    }
    const auto nested = [](std::size_t depth, const std::string &declaration) {
        std::string open;
        std::string close;
        for (std::size_t i = 0; i < depth; ++i) {
            open.append("<a").append(declaration).append(">");
            close.append("</a>");
        }
        return open + close;
    };
    expectVerdict(nested(xmlLimits::depth, ""), scanned);
    expectVerdict(nested(xmlLimits::depth + 1, ""), malformed);
    expectVerdict(nested(200, " xmlns:p='u'"), scanned);
    expectVerdict(nested(201, " xmlns:p='u'"), accepted);
}

TEST(XMLScanCases, EverNewElements) {
    const auto elements = [](int names, int count, const std::string &text) {
        std::string all = "<r>";
        for (int i = 0; i < count; ++i) {
            const std::string name = std::string("n").append(std::to_string(i % names));
            all.append("<").append(name).append(">").append(text).append("</").append(name) += '>';
        }
        return all + "</r>";
    };
    expectVerdict(elements(10'000, 6'000, ""), scanned);
    expectVerdict(elements(10'000, 10'000, ""), accepted);
    expectVerdict(elements(3'000, 10'000, ""), accepted);
    expectVerdict(elements(1'900, 10'000, ""), scanned);
    expectVerdict(elements(10'000, 10'000, std::string(200, 'x')), scanned);
}

} // namespace
} // namespace pelluvia
