// SPDX-License-Identifier: MIT

#include <tools/pelluvia/files/InputFault.h>

#include <Pelluvia/xml/XMLParser.h>

#include <gtest/gtest.h>

namespace pelluvia::host {
namespace {

ErrorPtr parserError(int code) {
    return Error::make(NSXMLParserErrorDomain, code,
                       {{std::string(NSLocalizedDescriptionKey), "mismatched tag\n"},
                        {std::string(NSXMLParserErrorLineNumber), std::int64_t{3}},
                        {std::string(NSXMLParserErrorColumn), std::int64_t{14}}});
}

TEST(InputFault, AParsersErrorSpeaksForItself) {
    const InputFault fault = InputFault::from(*parserError(76), "reported before");
    EXPECT_EQ(fault.text("a.gpx"), "a.gpx:3:14: mismatched tag");
    EXPECT_EQ(fault.status, 1);
}

TEST(InputFault, OfAnAbortTheImportersReportSpeaks) {
    EXPECT_EQ(InputFault::from(*parserError(512), "Nested tracks").text("a.gpx"),
              "a.gpx:3:14: Nested tracks");
    EXPECT_EQ(InputFault::from(*parserError(512), "").text("a.gpx"), "a.gpx:3:14: mismatched tag");
}

TEST(InputFault, AnUnknownPlaceIsLeftOut) {
    EXPECT_EQ(InputFault{.message = "text"}.text("a.gpx"), "a.gpx: text");
    EXPECT_EQ((InputFault{.line = 2, .message = "text"}.text("a.gpx")), "a.gpx:2: text");
}

} // namespace
} // namespace pelluvia::host
