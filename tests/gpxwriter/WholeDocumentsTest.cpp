// SPDX-License-Identifier: MIT

#include <tests/gpxwriter/CommaLocale.h>
#include <tests/gpxwriter/SampleDocuments.h>

#include <Pelluvia/model/GPXDataHost.h>

#include <gtest/gtest.h>
#include <libxml/parser.h>
#include <memory>
#include <string>
#include <tests/support/TemporaryFolder.h>

namespace pelluvia {
namespace {

using testing::SampleDocument;
using testing::textOf;

/// The golden file of a document; the host of our own namespace is that of this build.
std::string goldenText(const SampleDocument &sample) {
    constexpr std::string_view defaultHost = "www.quorvel.com";
    std::string text =
        testing::readFile(testing::fixture("gpxwriter/" + std::string(sample.name) + ".gpx"));
    for (std::size_t at = text.find(defaultHost); at != std::string::npos;
         at = text.find(defaultHost, at + std::string_view(PELLUVIA_GPXDATA_HOST).size())) {
        text.replace(at, defaultHost.size(), PELLUVIA_GPXDATA_HOST);
    }
    return text;
}

class WholeDocument : public ::testing::TestWithParam<SampleDocument> {};

TEST_P(WholeDocument, HasTheBytesOfItsGoldenFile) {
    EXPECT_EQ(textOf(GetParam()), goldenText(GetParam()));
}

TEST_P(WholeDocument, IsWellFormedWithAllNamespacesDeclared) {
    const std::string text = textOf(GetParam());
    const std::unique_ptr<xmlParserCtxt, decltype(&xmlFreeParserCtxt)> context(xmlNewParserCtxt(),
                                                                               &xmlFreeParserCtxt);
    const std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)> document(
        xmlCtxtReadMemory(context.get(), text.data(), static_cast<int>(text.size()), nullptr,
                          nullptr, XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING),
        &xmlFreeDoc);
    EXPECT_NE(document, nullptr);
    EXPECT_EQ(context->wellFormed, 1);
    EXPECT_EQ(context->nsWellFormed, 1);
}

TEST_P(WholeDocument, IsASCII) {
    for (const char c : textOf(GetParam())) {
        ASSERT_LT(static_cast<unsigned char>(c), 0x80);
    }
}

INSTANTIATE_TEST_SUITE_P(GPXExporter, WholeDocument,
                         ::testing::ValuesIn(testing::sampleDocuments()),
                         [](const auto &sample) { return std::string(sample.param.name); });

TEST(WholeDocuments, AreTheSameInEveryLocaleAndTimeZone) {
    const testing::CommaLocale locale;
    if (!locale.isActive()) {
        GTEST_SKIP() << "this system has no locale with a decimal comma and cannot make one";
    }
    for (const SampleDocument &sample : testing::sampleDocuments()) {
        EXPECT_EQ(textOf(sample), goldenText(sample)) << sample.name;
    }
}

} // namespace
} // namespace pelluvia
