// SPDX-License-Identifier: MIT

#include <Pelluvia/xml/internal/scan/Asides.h>
#include <Pelluvia/xml/internal/scan/Bytes.h>

#include <cstddef>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <vector>

namespace pelluvia::xml::scan {
namespace {

using namespace std::string_view_literals;
using Reader = Look (*)(const char *, const char *, const char *&);

/// How the look came out, and what was read of the text.
std::string lookAt(Reader read, std::string_view text) {
    std::vector<char> bytes(text.begin(), text.end());
    bytes.resize(text.size() + padding);
    const char *after = nullptr;
    switch (read(bytes.data(), bytes.data() + text.size(), after)) {
    case Look::complete:
        return {static_cast<const char *>(bytes.data()), after};
    case Look::cutOff:
        return "cut off";
    case Look::refused:
        break;
    }
    return "refused";
}

/// The section, with its text in front.
Look readSection(const char *at, const char *end, const char *&after) {
    std::string_view text;
    const Look look = readCDATA(at, end, text, after);
    if (look == Look::complete) {
        EXPECT_EQ(text.data(), at + 9);
        EXPECT_EQ(text.data() + text.size() + 3, after);
    }
    return look;
}

void expectWhole(Reader read, std::string_view text) {
    EXPECT_EQ(lookAt(read, text), text);
    EXPECT_EQ(lookAt(read, std::string(text) + "-->?>]]>"), text);
}

void expectCutOff(Reader read, std::string_view text, std::size_t from) {
    expectWhole(read, text);
    for (std::size_t size = from; size < text.size(); ++size) {
        EXPECT_EQ(lookAt(read, text.substr(0, size)), "cut off") << text.substr(0, size);
    }
}

TEST(ScanBegins, TellsAlsoWhatMayYetBegin) {
    const auto look = [](std::string_view text) {
        return begins(text.data(), text.data() + text.size(), "<!--");
    };
    EXPECT_EQ(look("<!--"), Look::complete);
    EXPECT_EQ(look("<!-- x"), Look::complete);
    EXPECT_EQ(look(""), Look::cutOff);
    EXPECT_EQ(look("<"), Look::cutOff);
    EXPECT_EQ(look("<!-"), Look::cutOff);
    EXPECT_EQ(look("<!x"), Look::refused);
    EXPECT_EQ(look("x"), Look::refused);
}

TEST(ScanXMLDeclaration, IsRead) {
    for (const std::string_view text :
         {"<?xml version='1.0'?>"sv, "<?xml version = \"1.0\" ?>"sv,
          "<?xml\tversion='1.0'\nencoding='UTF-8'\n?>"sv,
          "<?xml version='1.0' encoding=\"x-Y_1.2\" standalone='yes'?>"sv,
          "<?xml version='1.0' standalone = 'no' ?>"sv}) {
        expectWhole(readXMLDeclaration, text);
    }
}

TEST(ScanXMLDeclaration, IsRefused) {
    for (const std::string_view text : {""sv,
                                        "<?xml"sv,
                                        "<?xml version='1.0'"sv,
                                        "<?xml version='1.0'?"sv,
                                        "<?xml?>"sv,
                                        "<?xmlversion='1.0'?>"sv,
                                        "<?xml version='1.1'?>"sv,
                                        "<?xml version='1.0\"?>"sv,
                                        "<?xml version=1.0?>"sv,
                                        "<?xml version?>"sv,
                                        "<?xml version '1.0'?>"sv,
                                        "<?xml encoding='UTF-8'?>"sv,
                                        "<?xml version='1.0'encoding='UTF-8'?>"sv,
                                        "<?xml version='1.0' encoding=''?>"sv,
                                        "<?xml version='1.0' encoding='8'?>"sv,
                                        "<?xml version='1.0' encoding='_a'?>"sv,
                                        "<?xml version='1.0' encoding='a b'?>"sv,
                                        "<?xml version='1.0' standalone='maybe'?>"sv,
                                        "<?xml version='1.0' other='x'?>"sv,
                                        "<?xml version='1.0' standalone='yes' encoding='a'?>"sv,
                                        "<?xml version='1.0' ? >"sv,
                                        "<?XML version='1.0'?>"sv,
                                        "<?xml version='1.0'/>"sv}) {
        EXPECT_EQ(lookAt(readXMLDeclaration, text), "refused") << text;
    }
}

TEST(ScanComment, IsReadToItsEnd) {
    expectCutOff(readComment, "<!---->", 4);
    expectCutOff(readComment, "<!-- - -> <b> & ]]> ?> \t\n\x7F -->", 4);
    expectCutOff(readComment, "<!-- \xC3\xA9\xE6\x9D\xB1\xF0\x9F\x98\x80 -->", 4);
}

TEST(ScanComment, IsRefused) {
    for (const std::string_view text :
         {"<!-- -- -->"sv, "<!-- --->"sv, "<!--->--->"sv, "<!-- \x01 -->"sv, "<!-- \0 -->"sv,
          "<!-- \r -->"sv, "<!-- \xFF    -->"sv, "<!-- \xEF\xBF\xBF -->"sv}) {
        EXPECT_EQ(lookAt(readComment, text), "refused") << text;
    }
}

TEST(ScanInstruction, IsReadToItsEnd) {
    expectCutOff(readInstruction, "<?p?>", 2);
    expectCutOff(readInstruction, "<?p ?>", 2);
    expectCutOff(readInstruction, "<?a.b-c_1\n<x> & --> ]]> ? > ?\?>", 2);
    expectCutOff(readInstruction, "<?xml-stylesheet href='\xC3\xA9'?>", 6);
}

TEST(ScanInstruction, IsRefusedWhenItIsLong) {
    for (const char filling : "xn ?") {
        if (filling != '\0') {
            const std::string text(193, filling);
            EXPECT_EQ(lookAt(readInstruction, "<?p " + text + " ?>").size(), 200U);
            EXPECT_EQ(lookAt(readInstruction, "<?p " + text + "x ?>"), "refused");
        }
    }
    const std::string target(196, 'p');
    EXPECT_EQ(lookAt(readInstruction, "<?" + target + "?>").size(), 200U);
    EXPECT_EQ(lookAt(readInstruction, "<?p" + target + "?>"), "refused");
}

TEST(ScanInstruction, IsRefused) {
    for (const std::string_view text :
         {"<?\?>"sv, "<? p?>"sv, "<?1?>"sv, "<?p:q?>"sv, "<?xml?>"sv, "<?XML ?>"sv, "<?xMl x?>"sv,
          "<?p>"sv, "<?p?x?>"sv, "<?p!?>"sv, "<?p\xC3\xA9?>"sv, "<?\xC3\xA9?>"sv, "<?p\0?>"sv,
          "<?p \x01?>"sv, "<?p \0?>"sv, "<?p \xFF   ?>"sv}) {
        EXPECT_EQ(lookAt(readInstruction, text), "refused") << text;
    }
}

TEST(ScanCDATA, IsReadToItsEnd) {
    expectCutOff(readSection, "<![CDATA[]]>", 9);
    expectCutOff(readSection, "<![CDATA[<b>&no; -- ?> ] ]> ]] > \t\n]]>", 9);
    expectCutOff(readSection, "<![CDATA[]]]]]>", 9);
    expectCutOff(readSection, "<![CDATA[\xC3\xA9\xE6\x9D\xB1\xF0\x9F\x98\x80]]>", 9);
}

TEST(ScanCDATA, IsRefused) {
    for (const std::string_view text : {"<![CDATA[\x01]]>"sv, "<![CDATA[\0]]>"sv,
                                        "<![CDATA[\xFF   ]]>"sv, "<![CDATA[\xC3   ]]>"sv}) {
        EXPECT_EQ(lookAt(readSection, text), "refused") << text;
    }
}

} // namespace
} // namespace pelluvia::xml::scan
