// SPDX-License-Identifier: MIT

#include <Pelluvia/xml/XMLParser.h>

#include <gtest/gtest.h>
#include <memory>
#include <tests/support/RecordingXMLDelegate.h>
#include <tests/support/XMLSources.h>
#include <utility>

/// \file
/// Documents that are made to exhaust whoever reads them.

namespace pelluvia {
namespace {

using testing::eventsOf;
using testing::parserOf;
using testing::RecordingXMLDelegate;
using testing::RepeatingSource;

/// Counts events and bytes and keeps nothing.
class CountingDelegate : public XMLParserDelegate {
  public:
    explicit CountingDelegate(bool namesOnly) : namesOnly_(namesOnly) {}

    std::size_t bytes = 0;
    int elements = 0;

    [[nodiscard]] bool wantsElementNamesOnly() const override { return namesOnly_; }
    void didStartElement(XMLParser & /*parser*/, const XMLElement & /*element*/,
                         const XMLAttributes &attributes) override {
        ++elements;
        for (const XMLAttribute &each : attributes) {
            bytes += each.value.size();
        }
    }
    void foundCharacters(XMLParser & /*parser*/, std::string_view characters) override {
        bytes += characters.size();
    }

  private:
    bool namesOnly_;
};

/// The code of the error that a document of a repeated pattern leads to; 0 when it is read to the
/// end. `read` is told how much of it was read.
int codeOf(const std::string &head, const std::string &pattern, std::size_t size,
           const std::string &tail, bool namesOnly, std::size_t &read) {
    CountingDelegate delegate(namesOnly);
    auto source = std::make_unique<RepeatingSource>(head, pattern, size, tail);
    const RepeatingSource *position = source.get();
    XMLParser parser(std::move(source));
    parser.setDelegate(&delegate);
    const bool success = parser.parse();
    read = position->position();
    EXPECT_EQ(success, parser.parserError() == nullptr);
    return success ? 0 : static_cast<int>(parser.parserError()->code());
}

/// The same of a text, with all events and with names only, which must agree.
int codeOf(const std::string &text) {
    std::size_t read = 0;
    const int code = codeOf(text, " ", 0, "", false, read);
    EXPECT_EQ(codeOf(text, " ", 0, "", true, read), code);
    return code;
}

/// The message of the error that a text leads to.
std::string messageOf(std::string text) {
    CountingDelegate delegate(false);
    const auto parser = parserOf(std::move(text));
    parser->setDelegate(&delegate);
    return parser->parse() ? "none" : parser->parserError()->localizedDescription();
}

/// Entities each of which refers ten times to the one before.
std::string laughs(int levels) {
    std::string subset = "<!DOCTYPE a [<!ENTITY e0 'ha'>";
    for (int i = 1; i <= levels; ++i) {
        subset.append("<!ENTITY e").append(std::to_string(i)).append(" '");
        for (int j = 0; j < 10; ++j) {
            subset.append("&e").append(std::to_string(i - 1)).append(";");
        }
        subset += "'>";
    }
    return subset + "]>";
}

std::string repeated(std::string_view text, std::size_t count) {
    std::string all;
    for (std::size_t i = 0; i < count; ++i) {
        all += text;
    }
    return all;
}

constexpr std::size_t gigabyte = 1'000'000'000;

TEST(XMLLimits, DepthIsLimited) {
    const auto nested = [](std::size_t depth) {
        return repeated("<a>", depth) + repeated("</a>", depth);
    };
    EXPECT_EQ(codeOf(nested(xmlLimits::depth)), 0);
    EXPECT_EQ(codeOf(nested(xmlLimits::depth + 1)), 1);
    // Elements side by side do not count.
    EXPECT_EQ(codeOf("<a>" + repeated("<b></b>", 1000) + "</a>"), 0);
    std::size_t read = 0;
    EXPECT_EQ(codeOf("", "<a>", gigabyte, "", true, read), 1);
    EXPECT_LT(read, 1'000'000U);
}

TEST(XMLLimits, DepthCountsThroughEntities) {
    const std::string half = repeated("<b>", 128);
    const std::string halfEnd = repeated("</b>", 128);
    const std::string subset = "<!DOCTYPE a [<!ENTITY e '" + half + halfEnd + "'>]>";
    EXPECT_EQ(codeOf(subset + half + "&e;&e;" + halfEnd), 0);
    EXPECT_EQ(codeOf(subset + "<b>" + half + "&e;" + halfEnd + "</b>"), 1);
}

TEST(XMLLimits, AHugeTextEndsInAnErrorAndIsNotKept) {
    for (const char *pattern : {"text ", "\xE2\x82\xAC\xE2\x82\xAC\n", "&amp;", "&#65;"}) {
        std::size_t read = 0;
        EXPECT_EQ(codeOf("<a>", pattern, gigabyte, "</a>", false, read), 1) << pattern;
        EXPECT_LT(read, 7 * xmlLimits::textSize);
    }
    std::size_t read = 0;
    EXPECT_EQ(codeOf("<a>", "text ", xmlLimits::textSize, "</a>", false, read), 0);
    EXPECT_EQ(codeOf("<a>", "text ", xmlLimits::textSize + 1, "</a>", false, read), 1);
    // Texts between other tags.
    EXPECT_EQ(codeOf("<a>", "text <b/>", 2 * xmlLimits::textSize / 9 * 9, "</a>", false, read), 0);
}

TEST(XMLLimits, HugePiecesOfMarkupEndInAnError) {
    const std::pair<const char *, const char *> documents[] = {
        {"<a b='", "value "},
        {"<a b='", "&amp;"},
        {"<a b='", "\xE2\x82\xAC"},
        {"<a><![CDATA[", "x "},
        {"<a><!--", "\xE2\x82\xAC "},
        {"<a><?p ", "x "},
        {"<", "a"},
        {"<a ", "b "},
        {"<a>&", "e"},
        {"<?xml version='", "1"},
        {"<!DOCTYPE a SYSTEM '", "x"},
        {"<!DOCTYPE a [<!ENTITY e '", "x"},
        {"", " "},
        {"<a ", " "},
    };
    for (const auto &[head, pattern] : documents) {
        for (const bool namesOnly : {false, true}) {
            std::size_t read = 0;
            EXPECT_NE(codeOf(head, pattern, gigabyte, "", namesOnly, read), 0) << head;
            EXPECT_LT(read, 3 * xmlLimits::textSize) << head;
        }
    }
}

TEST(XMLLimits, CommentsAreSkippedWithoutBeingKept) {
    std::size_t read = 0;
    EXPECT_EQ(codeOf("<a><!--", "comment ", 4 * xmlLimits::textSize, "--></a>", false, read), 0);
}

TEST(XMLLimits, TheAttributesOfATagAreLimited) {
    const auto tag = [](int count) {
        std::string text = "<a";
        for (int i = 0; i < count; ++i) {
            text.append(" b").append(std::to_string(i)).append("=''");
        }
        return text + "/>";
    };
    EXPECT_EQ(codeOf(tag(xmlLimits::attributes)), 0);
    EXPECT_EQ(codeOf(tag(xmlLimits::attributes + 1)), 1);
    EXPECT_EQ(codeOf(tag(400'000)), 1);
    EXPECT_EQ(codeOf("<!DOCTYPE a [<!ENTITY e \"" + tag(20'000) + "\">]><a>&e;</a>"), 1);
}

TEST(XMLLimits, NamespaceDeclarationsInForceAreLimited) {
    const auto tag = [](int count) {
        std::string text = "<a";
        for (int i = 0; i < count; ++i) {
            text.append(" xmlns:b").append(std::to_string(i)).append("='x'");
        }
        return text;
    };
    EXPECT_EQ(codeOf(tag(xmlLimits::attributes) + "/>"), 0);
    EXPECT_EQ(codeOf(tag(xmlLimits::attributes + 1) + "/>"), 1);
    EXPECT_EQ(codeOf(tag(300) + ">" + tag(300) + "/></a>"), 1);
    EXPECT_EQ(codeOf("<r>" + tag(300) + "/>" + tag(300) + "/></r>"), 0);
    EXPECT_EQ(codeOf(tag(200'000) + "/>"), 1);
}

/// Elements, attributes or instructions of ever new names.
TEST(XMLLimits, TheNamesThatTheLibraryKeepsAreLimited) {
    const auto document = [](std::size_t names, const char *before, const char *behind) {
        std::string text = "<!DOCTYPE a><a>";
        for (std::size_t i = 0; i < names; ++i) {
            text.append(before).append(std::to_string(i)).append(behind);
        }
        return text + "</a>";
    };
    for (const auto &[before, behind] :
         {std::pair("<n", "/>"), std::pair("<a n", "=''/>"), std::pair("<?n", "?>"),
          std::pair("<a xmlns:n", "='u'/>"), std::pair("<a xmlns='u", "'/>")}) {
        EXPECT_EQ(codeOf(document(xmlLimits::names / 2, before, behind)), 0) << before;
        EXPECT_EQ(codeOf(document(2 * xmlLimits::names, before, behind)), 1) << before;
    }
}

TEST(XMLLimits, DefaultedAttributesCountAsAmplification) {
    std::string subset = "<!DOCTYPE a [<!ATTLIST b ";
    for (int i = 0; i < 400; ++i) {
        subset.append("b").append(std::to_string(i)).append(" CDATA 'default' ");
    }
    subset += ">]>";
    EXPECT_EQ(codeOf(subset + "<a><b/><b/><b/></a>"), 0);
    std::size_t read = 0;
    EXPECT_EQ(codeOf(subset + "<a>", "<b/>", gigabyte, "", true, read), 89);
    EXPECT_LT(read, 1'000'000U);
}

TEST(XMLLimits, ABillionLaughsAreAParseError) {
    EXPECT_EQ(codeOf(laughs(2) + "<a>&e2;</a>"), 0);
    EXPECT_EQ(codeOf(laughs(9) + "<a>&e9;</a>"), 89);
    EXPECT_EQ(codeOf(laughs(9) + "<a b='&e9;'/>"), 89);
    EXPECT_EQ(codeOf(laughs(30) + "<a>&e30;</a>"), 89);
    const std::string subset = laughs(9);
    EXPECT_EQ(codeOf(subset.substr(0, subset.size() - 2) + "<!ATTLIST a b CDATA '&e9;'>]><a/>"),
              89);
}

TEST(XMLLimits, LaughsInParameterEntitiesAreAParseError) {
    // Within the internal subset a parameter entity cannot be part of a declaration, but one that
    // declares others can refer to them.
    std::string subset = "<!DOCTYPE a [<!ENTITY % p0 '<!ENTITY x \"ha\">'>";
    for (int i = 1; i <= 12; ++i) {
        subset.append("<!ENTITY % p").append(std::to_string(i)).append(" '");
        subset += repeated("&#37;p" + std::to_string(i - 1) + ";", 10);
        subset += "'>";
    }
    const int code = codeOf(subset + "%p12;]><a/>");
    EXPECT_TRUE(code == 89 || code == 1) << code;
}

TEST(XMLLimits, QuadraticGrowthIsAParseError) {
    const std::string subset =
        "<!DOCTYPE a [<!ENTITY e '" + repeated("0123456789", 10'000) + "'>]>";
    EXPECT_EQ(codeOf(subset + "<a>" + repeated("&e;", 10) + "</a>"), 0);
    EXPECT_EQ(codeOf(subset + "<a>" + repeated("&e;", 10'000) + "</a>"), 89);
    EXPECT_EQ(codeOf(subset + "<a>" + repeated("<b c='&e;'/>", 10'000) + "</a>"), 89);
    const std::string comments =
        "<!DOCTYPE a [<!ENTITY e '<!--" + repeated("0123456789", 10'000) + "-->'>]>";
    EXPECT_EQ(codeOf(comments + "<a>" + repeated("&e;", 10'000) + "</a>"), 89);
}

TEST(XMLLimits, AmplificationMayGrowWithTheDocument) {
    // 200 bytes for each reference in a document that has more than a fifth of that itself.
    const std::string subset = "<!DOCTYPE a [<!ENTITY e '" + repeated("0123456789", 20) + "'>]>";
    std::size_t read = 0;
    EXPECT_EQ(codeOf(subset + "<a>", "<b c='0123456789012345678901234567890'/>&e;", 43 * 200'000,
                     "</a>", false, read),
              0);
    EXPECT_EQ(codeOf(subset + "<a>", "<b/>&e;", 7 * 200'000, "</a>", false, read), 89);
}

TEST(XMLLimits, RecursiveEntitiesAreAParseError) {
    EXPECT_EQ(codeOf("<!DOCTYPE a [<!ENTITY e '&e;'>]><a>&e;</a>"), 89);
    EXPECT_EQ(codeOf("<!DOCTYPE a [<!ENTITY e '&e;'>]><a b='&e;'/>"), 89);
    EXPECT_EQ(codeOf("<!DOCTYPE a [<!ENTITY e '<b>&f;</b>'><!ENTITY f '<b>&e;</b>'>]><a>&e;</a>"),
              89);
    EXPECT_EQ(codeOf("<!DOCTYPE a [<!ENTITY % e '&#37;e;'>%e;]><a/>"), 89);
}

TEST(XMLLimits, TheDocumentTypeDeclarationIsLimited) {
    const std::pair<const char *, const char *> documents[] = {
        {"<!DOCTYPE a [", "<!ENTITY e 'x'>"},    {"<!DOCTYPE a [<!ATTLIST a b (", "x|"},
        {"<!DOCTYPE a [<!ELEMENT a (", "b|"},    {"<!DOCTYPE a [", "<!-- -->"},
        {"<!DOCTYPE a [", "<!ELEMENT b EMPTY>"},
    };
    for (const auto &[head, pattern] : documents) {
        std::size_t read = 0;
        EXPECT_EQ(codeOf(head, pattern, gigabyte, "]><a/>", false, read), 1) << head;
        EXPECT_LT(read, 2 * xmlLimits::declarationsSize + 100'000) << head;
    }
    std::size_t read = 0;
    EXPECT_EQ(codeOf("<!DOCTYPE a [", "<!ELEMENT b EMPTY>", 180'000, "]><a/>", false, read), 0);
}

TEST(XMLLimits, MessagesNameTheLimit) {
    EXPECT_EQ(messageOf(repeated("<a>", 257)), "Elements are nested more than 256 deep");
    EXPECT_EQ(messageOf("<a>" + repeated("text ", xmlLimits::textSize / 5 + 1) + "</a>"),
              "The text between two tags is longer than 10,000,000 bytes");
    EXPECT_EQ(messageOf("<a" + std::string(2 * xmlLimits::textSize, ' ') + "/>"),
              "A tag, other markup, or blank space is longer than 10,000,000 bytes");
    EXPECT_EQ(messageOf("<a b='" + repeated("&amp;", 2 * xmlLimits::textSize / 5) + "'/>"),
              "A tag, other markup, or blank space is longer than 10,000,000 bytes");
    EXPECT_EQ(messageOf("<!DOCTYPE a [" + repeated("<!-- -->", 40'000) + "]><a/>"),
              "The document type declaration is longer than 256,000 bytes");
    std::string attributes;
    std::string names;
    for (int i = 0; i < 200'000; ++i) {
        const std::string number = std::to_string(i);
        names.append("<n").append(number).append("/>");
        if (i <= xmlLimits::attributes) {
            attributes.append(" b").append(number).append("=''");
        }
    }
    EXPECT_EQ(messageOf("<a" + attributes + "/>"),
              "A tag has more than 500 attributes, or as many namespace declarations are in force");
    EXPECT_EQ(messageOf("<!DOCTYPE a><a>" + names + "</a>"),
              "There are more than 100,000 different names");
}

/// Fewer names than are too many, but each one long: elements, attributes, namespaces, targets of
/// instructions, entities.
TEST(XMLLimits, TheMemoryForNamesIsLimited) {
    const std::string filling(5000, 'x');
    const auto document = [&](int names, const char *before, const char *behind) {
        std::string text = "<!DOCTYPE a [<!ENTITY % p SYSTEM 'p'>%p;]><a>";
        for (int i = 0; i < names; ++i) {
            text.append(before).append(std::to_string(i)).append(filling).append(behind);
        }
        return text + "</a>";
    };
    for (const auto &[before, behind] :
         {std::pair("<n", "/>"), std::pair("<b n", "=''/>"), std::pair("<b xmlns='n", "'/>"),
          std::pair("<?n", " ?>"), std::pair("&n", ";")}) {
        EXPECT_EQ(messageOf(document(1'500, before, behind)), "none") << before;
        EXPECT_EQ(messageOf(document(6'000, before, behind)),
                  "The different names take more than 10,000,000 bytes")
            << before;
    }
}

TEST(XMLLimits, AnEntityBombIsNotCalledALoop) {
    const std::string bomb = "Entities and default values add more than 1,000,000 bytes and 5 "
                             "times what was read to the document";
    EXPECT_EQ(messageOf(laughs(9) + "<a>&e9;</a>"), bomb);
    EXPECT_EQ(messageOf(laughs(9) + "<a b='&e9;'/>"), bomb);
    const std::string deep = "Entities refer to themselves, or to one another more than 40 deep";
    EXPECT_EQ(messageOf("<!DOCTYPE a [<!ENTITY e '&e;'>]><a>&e;</a>"), deep);
    EXPECT_EQ(messageOf("<!DOCTYPE a [<!ENTITY e '&e;'>]><a b='&e;'/>"), deep);
    EXPECT_EQ(messageOf(laughs(60) + "<a>&e60;</a>"), deep);
}

TEST(XMLLimits, NoEventFollowsTheError) {
    RecordingXMLDelegate delegate;
    const auto parser = parserOf(laughs(9) + "<a><b/>&e9;<c/></a>");
    parser->setDelegate(&delegate);
    EXPECT_FALSE(parser->parse());
    EXPECT_EQ(delegate.events.back(), "error 89");
    EXPECT_LT(delegate.characters().size(), 3'000'000U);
    EXPECT_EQ(parser->lineNumber(), 1);
}

} // namespace
} // namespace pelluvia
