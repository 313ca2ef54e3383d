// SPDX-License-Identifier: MIT

#include <Pelluvia/xml/XMLParser.h>

#include <gtest/gtest.h>
#include <tests/support/RecordingXMLDelegate.h>
#include <tests/support/XMLSources.h>

/// \file
/// Text and attribute values as XML 1.0 defines them, in every encoding and however the bytes come.

namespace pelluvia {
namespace {

using namespace std::string_literals;
using testing::eventsOf;
using testing::parserOf;
using testing::RecordingXMLDelegate;

/// The text of a document, which must be well-formed.
std::string textOf(std::string document, std::size_t step = 1000) {
    RecordingXMLDelegate delegate;
    const auto parser = parserOf(std::move(document), step);
    parser->setDelegate(&delegate);
    EXPECT_TRUE(parser->parse()) << delegate.text();
    return delegate.characters();
}

/// The value of attribute `b` of the first element.
std::string valueOf(const std::string &document) {
    const std::string events = eventsOf(document);
    const std::size_t start = events.find("b=\"");
    EXPECT_NE(start, std::string::npos) << events;
    return events.substr(start + 3, events.find("\"\n", start + 3) - start - 3);
}

/// The text in a fixed encoding of `width` bytes, of ASCII.
std::string widened(std::string_view text, std::size_t width, bool bigEndian) {
    std::string wide;
    for (const char c : text) {
        const std::string zeros(width - 1, '\0');
        wide += bigEndian ? zeros + c : c + zeros;
    }
    return wide;
}

constexpr std::size_t steps[] = {1, 2, 3, 7, 64, 4000, 100'000};

TEST(XMLText, ReferencesAreResolvedOnce) {
    EXPECT_EQ(textOf("<a>&amp;lt; &lt;&gt;&quot;&apos; &#38;amp; &#x26;#38; &#955;&#x1F6B2;</a>"),
              "&lt; <>\"' &amp; &#38; \xCE\xBB\xF0\x9F\x9A\xB2");
    EXPECT_EQ(
        valueOf("<a b='&amp;lt; &lt;&gt;&quot;&apos; &#38;amp; &#x26;#38; &#955;&#x1F6B2;'/>"),
        "&lt; <>\"' &amp; &#38; \xCE\xBB\xF0\x9F\x9A\xB2");
}

TEST(XMLText, InternalEntitiesAreReplacedEveryTime) {
    const std::string subset = "<!DOCTYPE a [<!ENTITY e 'x&#38;amp;y'><!ENTITY f '&e;&e;'>"
                               "<!ENTITY m '<i j=\"&amp;amp;\">&e;</i>'><!ENTITY n ''>]>";
    EXPECT_EQ(textOf(subset + "<a>&e;|&f;|&f;|&n;</a>"), "x&y|x&yx&y|x&yx&y|");
    EXPECT_EQ(valueOf(subset + "<a b='&e;|&f;|&f;|&n;'/>"), "x&y|x&yx&y|x&yx&y|");
    const std::string element = "start i j=\"&amp;\"\ntext \"x&y\"\nend i\n";
    EXPECT_EQ(eventsOf(subset + "<a>&m;&m;</a>"), "start a\n" + element + element + "end a\n");
}

TEST(XMLText, NamesInEntitiesAreRecognised) {
    constexpr std::string_view names[] = {"i", "j"};
    constexpr std::string_view spaces[] = {"urn:x"};
    RecordingXMLDelegate delegate;
    delegate.names = {names, spaces};
    const auto parser = parserOf("<!DOCTYPE a [<!ENTITY m '<i j=\"1\"/>'>]>"
                                 "<a xmlns='urn:x'>&m;</a>");
    parser->setDelegate(&delegate);
    EXPECT_TRUE(parser->parse());
    EXPECT_EQ(delegate.events.at(2), "start {urn:x}#1i#1 j#2=\"1\"");
}

TEST(XMLText, ThePredefinedEntitiesKeepTheirMeaning) {
    EXPECT_EQ(textOf("<!DOCTYPE a [<!ENTITY lt '&#38;#60;'><!ENTITY amp 'wrong'>"
                     "<!ENTITY gt SYSTEM 'x'>]><a>&lt;&amp;&gt;</a>"),
              "<&>");
}

TEST(XMLText, AnUndeclaredEntityIsAnErrorUnlessItMayBeDeclaredElsewhere) {
    EXPECT_EQ(eventsOf("<a>&e;</a>"), "start a\nerror 26\n");
    EXPECT_EQ(eventsOf("<!DOCTYPE a SYSTEM 'a.dtd'><a>x&e;y</a>"), "start a\ntext \"xy\"\nend a\n");
    EXPECT_EQ(eventsOf("<!DOCTYPE a SYSTEM 'a.dtd' [<!ENTITY f 'x&e;y'>]><a b='&e;'>&f;</a>"),
              "start a b=\"\"\ntext \"xy\"\nend a\n");
    EXPECT_EQ(eventsOf("<?xml version='1.0' standalone='yes'?>"
                       "<!DOCTYPE a SYSTEM 'a.dtd' [<!ENTITY f 'x&e;y'>]><a>&f;</a>"),
              "start a\ntext \"x\"\nerror 26\n");
}

TEST(XMLText, AttributesHaveTheirDefaults) {
    EXPECT_EQ(eventsOf("<!DOCTYPE a [<!ATTLIST a b CDATA 'x&amp;y' c NMTOKEN #FIXED ' z '>]>"
                       "<a b='1'><a/></a>"),
              "start a b=\"1\" c=\"z\"\nstart a b=\"x&y\" c=\"z\"\nend a\nend a\n");
}

TEST(XMLText, CDataIsText) {
    EXPECT_EQ(eventsOf("<a>x<![CDATA[<b>&lt;]] >]]]>y<![CDATA[]]>]</a>"),
              "start a\ntext \"x<b>&lt;]] >]y]\"\nend a\n");
}

TEST(XMLText, LineEndsAreOneLineFeed) {
    for (const std::size_t step : steps) {
        EXPECT_EQ(textOf("<a>1\r\n2\r3\n4\r\r\n5\n\r6\r\n\r\n7&#13;\n</a>\r", step),
                  "1\n2\n3\n4\n\n5\n\n6\n\n7\r\n");
        EXPECT_EQ(textOf("<a><![CDATA[1\r\n2\r3\n4\r\r\n5]]>\r\n<![CDATA[\r]]></a>\r\n", step),
                  "1\n2\n3\n4\n\n5\n\n");
        EXPECT_EQ(textOf("<!DOCTYPE a [<!ENTITY e '1\r\n2\r3'>]><a>&e;</a>", step), "1\n2\n3");
    }
    EXPECT_EQ(valueOf("<a b='1\r\n2\r3\n4\t5&#10;6&#13;7&#9;8'/>"), "1 2 3 4 5\n6\r7\t8");
}

TEST(XMLText, ACarriageReturnByReferenceInAnEntityStays) {
    EXPECT_EQ(textOf("<!DOCTYPE a [<!ENTITY e '1&#13;2'>]><a>&e;&e;</a>"), "1\r21\r2");
    EXPECT_EQ(valueOf("<!DOCTYPE a [<!ENTITY e '1&#13;2'>]><a b='&e;'/>"), "1 2");
}

TEST(XMLText, NothingDependsOnWhereABlockEnds) {
    // What a border can tear apart, put at each distance from the library's blocks of 4,000 bytes.
    const std::string piece = "<b c='\xC3\xA4&amp;\r\n\xE2\x82\xAC'>\xF0\x9F\x9A\xB2\r\nx&lt;\r"
                              "<![CDATA[\r\n]]\xE2\x82\xAC\r]]><!--\xC3\xA4--></b>";
    const std::string events = "start b c=\"\xC3\xA4& \xE2\x82\xAC\"\n"
                               "text \"\xF0\x9F\x9A\xB2\nx<\n\n]]\xE2\x82\xAC\n\"\nend b\n";
    for (std::size_t padding = 3880; padding < 4020; ++padding) {
        const std::string space(padding, ' ');
        EXPECT_EQ(eventsOf("<a>" + space + piece + "</a>"),
                  "start a\ntext \"" + space + "\"\n" + events + "end a\n");
    }
    std::string document = "<a>";
    std::string all = "start a\n";
    for (int i = 0; i < 3000; ++i) {
        document += piece;
        all += events;
    }
    for (const std::size_t step : steps) {
        EXPECT_EQ(eventsOf(document + "</a>", step), all + "end a\n") << step;
    }
}

TEST(XMLText, ReadsUTF8WithAndWithoutMark) {
    EXPECT_EQ(textOf("<a>\xC3\xA4</a>"), "\xC3\xA4");
    EXPECT_EQ(textOf("\xEF\xBB\xBF<a>\xC3\xA4</a>"), "\xC3\xA4");
    EXPECT_EQ(textOf("<?xml version='1.0' encoding='utf-8'?><a>\xC3\xA4</a>"), "\xC3\xA4");
    // A mark has the last word.
    EXPECT_EQ(textOf("\xEF\xBB\xBF<?xml version='1.0' encoding='ISO-8859-1'?><a>\xC3\xA4</a>"),
              "\xC3\xA4");
}

TEST(XMLText, ReadsUTF16AndUTF32) {
    const std::string document = "<?xml version='1.0' encoding='UTF-16'?><a>x\r\ny</a>";
    for (const std::size_t step : steps) {
        EXPECT_EQ(textOf("\xFF\xFE" + widened(document, 2, false), step), "x\ny");
        EXPECT_EQ(textOf("\xFE\xFF" + widened(document, 2, true), step), "x\ny");
        EXPECT_EQ(textOf(widened(document, 2, false), step), "x\ny");
        EXPECT_EQ(textOf(widened(document, 2, true), step), "x\ny");
        EXPECT_EQ(textOf("\xFF\xFE\0\0"s + widened(document, 4, false), step), "x\ny");
        EXPECT_EQ(textOf("\0\0\xFE\xFF"s + widened(document, 4, true), step), "x\ny");
        // A pair of surrogates.
        EXPECT_EQ(textOf("\xFF\xFE" + widened("<a>", 2, false) + "\x3D\xD8\xB2\xDE" +
                             widened("</a>", 2, false),
                         step),
                  "\xF0\x9F\x9A\xB2");
    }
}

TEST(XMLText, ReadsEncodingsOfTheSystem) {
    struct Example {
        const char *encoding;
        std::string bytes;
        const char *text;
    };
    const Example examples[] = {
        {"ISO-8859-1", "\xE4\x80", "\xC3\xA4\xC2\x80"},
        {"windows-1252", "\xE4\x80", "\xC3\xA4\xE2\x82\xAC"},
        {"Shift_JIS", "\x93\xFA\x96\x7B", "\xE6\x97\xA5\xE6\x9C\xAC"},
        {"EUC-KR", "\xC7\xD1", "\xED\x95\x9C"},
        {"KOI8-R", "\xC1", "\xD0\xB0"},
        {"US-ASCII", "x", "x"},
    };
    for (const Example &each : examples) {
        for (const std::size_t step : steps) {
            const std::string declaration =
                "<?xml version=\"1.0\" \n encoding = '" + std::string(each.encoding) + "' ?>";
            EXPECT_EQ(textOf(declaration + "<a>" + each.bytes + "</a>", step), each.text);
        }
    }
}

TEST(XMLText, ConvertsAcrossTheBordersOfBlocks) {
    // Characters of two bytes at odd and even places, over several blocks of the file.
    for (const char *padding : {"", " "}) {
        std::string document =
            "<?xml version='1.0' encoding='Shift_JIS'?><a>" + std::string(padding);
        std::string text = padding;
        for (int i = 0; i < 100'000; ++i) {
            document += "\x93\xFA";
            text += "\xE6\x97\xA5";
        }
        EXPECT_EQ(textOf(document + "</a>"), text);
        EXPECT_EQ(textOf(document + "</a>", 4095), text);
    }
}

TEST(XMLText, ReadsEBCDIC) {
    // <?xml version='1.0'?><a>b</a>
    EXPECT_EQ(textOf("\x4C\x6F\xA7\x94\x93\x40\xA5\x85\x99\xA2\x89\x96\x95\x7E\x7D\xF1\x4B\xF0\x7D"
                     "\x6F\x6E\x4C\x81\x6E\x82\x4C\x61\x81\x6E"),
              "b");
}

TEST(XMLText, AnUnknownEncodingIsAnErrorAtItsName) {
    const auto parser = parserOf("<?xml version='1.0'\n encoding='x-none'?><a/>");
    EXPECT_FALSE(parser->parse());
    EXPECT_EQ(parser->parserError()->code(), 32);
    EXPECT_EQ(parser->parserError()->localizedDescription(), "Unsupported encoding x-none");
    EXPECT_EQ(parser->lineNumber(), 2);
    EXPECT_EQ(parser->columnNumber(), 19);
}

TEST(XMLText, ADeclarationThatTheBytesContradictIsAnError) {
    for (const char *name : {"UTF-16", "utf16le", "UCS-4"}) {
        const auto parser =
            parserOf("<?xml version='1.0' encoding='" + std::string(name) + "'?><a/>");
        EXPECT_FALSE(parser->parse());
        EXPECT_EQ(parser->parserError()->code(), 81);
    }
}

TEST(XMLText, BytesThatAreNoTextAreAnErrorWhereTheyStand) {
    const auto utf8 = parserOf("<a>\nab\xE4xyz</a>");
    EXPECT_FALSE(utf8->parse());
    EXPECT_EQ(utf8->parserError()->code(), 9);
    EXPECT_EQ(utf8->parserError()->localizedDescription(),
              "Input is not proper UTF-8, indicate encoding ! Bytes: 0xE4 0x78 0x79 0x7A");
    EXPECT_EQ(utf8->lineNumber(), 2);
    EXPECT_EQ(utf8->columnNumber(), 3);

    RecordingXMLDelegate delegate;
    const auto wide = parserOf("\xFF\xFE" + widened("<a>\nab", 2, false) + "\x00\xDC"s +
                               widened("</a>", 2, false));
    wide->setDelegate(&delegate);
    EXPECT_FALSE(wide->parse());
    EXPECT_EQ(wide->parserError()->code(), 6003);
    EXPECT_EQ(wide->parserError()->localizedDescription(), "Input is not proper UTF-16LE");
    EXPECT_EQ(delegate.characters(), "\nab");
    EXPECT_EQ(wide->lineNumber(), 2);
    EXPECT_EQ(wide->columnNumber(), 3);

    const auto cut = parserOf("\xFF\xFE" + widened("<a/>", 2, false) + "\x20");
    EXPECT_FALSE(cut->parse());
    EXPECT_EQ(cut->parserError()->code(), 6003);
}

TEST(XMLText, AnErrorBeforeBadBytesIsTheOneReported) {
    const auto parser = parserOf("\xFF\xFE" + widened("<a></b>", 2, false) +
                                 widened(std::string(500, ' '), 2, false) + "\x00\xDC"s);
    EXPECT_FALSE(parser->parse());
    EXPECT_EQ(parser->parserError()->code(), 76);
}

TEST(XMLText, ForbiddenCharactersAreErrors) {
    for (const std::string &bad : {"\0"s, "\x01"s, "\xEF\xBF\xBF"s, "&#0;"s, "&#xFFFF;"s,
                                   "&#x110000;"s, "\xED\xA0\x80"s, "\xC0\x80"s}) {
        EXPECT_FALSE(parserOf("<a>" + bad + "----</a>")->parse());
        EXPECT_FALSE(parserOf("<a b='" + bad + "----'/>")->parse());
        // In CDATA a reference is just text.
        EXPECT_EQ(parserOf("<a><![CDATA[" + bad + "----]]></a>")->parse(), bad.front() == '&');
    }
}

TEST(XMLText, ColumnsCountCharacters) {
    RecordingXMLDelegate delegate;
    std::int64_t column = 0;
    delegate.onEvent = [&](XMLParser &parser, const std::string &event) {
        if (event == "start b") {
            column = parser.columnNumber();
        }
    };
    const auto parser = parserOf("<a>\n\xE2\x82\xAC\xF0\x9F\x9A\xB2x<b/></a>");
    parser->setDelegate(&delegate);
    EXPECT_TRUE(parser->parse());
    EXPECT_EQ(column, 6);
}

} // namespace
} // namespace pelluvia
