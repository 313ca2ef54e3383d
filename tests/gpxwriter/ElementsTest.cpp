// SPDX-License-Identifier: MIT

#include <tests/gpxwriter/WriterTest.h>

namespace pelluvia {
namespace {

using Elements = WriterTest;

TEST_F(Elements, AStringIsEscapedAndEndsItsLine) {
    GPXWriteElementWithString(document, "name", "Fish & \"Chips\"");
    GPXWriteElementWithStringIfNotEmpty(document, "desc", "<a> 'b'");
    EXPECT_EQ(written(), "<name>Fish &amp; &quot;Chips&quot;</name>\n"
                         "<desc>&lt;a&gt; &apos;b&apos;</desc>\n");
}

TEST_F(Elements, ANullValueMakesAnEmptyElementOrNone) {
    GPXWriteElementWithString(document, "name", nullptr);
    EXPECT_EQ(newlyWritten(), "<name></name>\n");
    GPXWriteElementWithStringIfNotEmpty(document, "name", nullptr);
    EXPECT_EQ(newlyWritten(), "");
}

TEST_F(Elements, AnEmptyValueMakesAnEmptyElementInBothForms) {
    GPXWriteElementWithString(document, "name", "");
    GPXWriteElementWithStringIfNotEmpty(document, "name", "");
    EXPECT_EQ(written(), "<name></name>\n<name></name>\n");
}

TEST_F(Elements, AValueLongerThanTheBufferIsCut) {
    GPXWriteElementWithString(document, "name", std::string(600, 'a').c_str());
    EXPECT_EQ(newlyWritten(), "<name>" + std::string(511, 'a') + "</name>\n");
    GPXWriteElementWithStringIfNotEmpty(document, "n", (std::string(508, 'a') + "&b").c_str());
    EXPECT_EQ(newlyWritten(), "<n>" + std::string(508, 'a') + "</n>\n");
}

TEST_F(Elements, ALongNameIsWrittenWhole) {
    const std::string name(100'000, 'n');
    GPXWriteElementWithString(document, name.c_str(), "v");
    EXPECT_EQ(written(), "<" + name + ">v</" + name + ">\n");
}

} // namespace
} // namespace pelluvia
