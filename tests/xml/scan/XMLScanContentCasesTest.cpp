// SPDX-License-Identifier: MIT

#include <cstddef>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <tests/support/XMLCase.h>

/// \file
/// Text, references, characters, sections, comments, instructions, document types and encodings,
/// right and wrong.

namespace pelluvia {
namespace {

using namespace std::string_view_literals;
using testing::expectVerdict;
using testing::XMLCase;
using enum testing::XMLVerdict;

TEST(XMLScanCases, References) {
    constexpr XMLCase cases[] = {
        {"<a>&lt;&gt;&amp;&quot;&apos;</a>", scanned},
        {"<a>x&amp;y</a>", scanned},
        {"<a>&#65;&#x41;&#x4a;&#x4A;</a>", scanned},
        {"<a>&#9;&#10;&#13;&#32;</a>", scanned},
        {"<a>&#127;&#128;&#x7FF;&#x800;</a>", scanned},
        {"<a>&#xD7FF;&#xE000;&#xFFFD;&#x10000;&#x10FFFF;</a>", scanned},
        {"<a>&#0000065;</a>", scanned},
        {"<a>&#x000041;</a>", scanned},
        {"<a>]]&gt;</a>", scanned},
        {"<a>]]&#62;</a>", scanned},
        {"<a>&amp;lt;</a>", scanned},
        {"<a>&#38;#60;</a>", scanned},
        {"<a>&#60;b&#62;</a>", scanned},
        {"<a>&#x0000000000000000041;</a>", accepted},
        {"<a>&</a>", malformed},
        {"<a>& </a>", malformed},
        {"<a>&;</a>", malformed},
        {"<a>&amp</a>", malformed},
        {"<a>&amp </a>", malformed},
        {"<a>& amp;</a>", malformed},
        {"<a>&AMP;</a>", malformed},
        {"<a>&nbsp;</a>", malformed},
        {"<a>&undeclared;</a>", malformed},
        {"<a>&ampx;</a>", malformed},
        {"<a>&am</a>", malformed},
        {"<a>&#;</a>", malformed},
        {"<a>&#x;</a>", malformed},
        {"<a>&#X41;</a>", malformed},
        {"<a>&#-65;</a>", malformed},
        {"<a>&#+65;</a>", malformed},
        {"<a>&# 65;</a>", malformed},
        {"<a>&#65 ;</a>", malformed},
        {"<a>&#65</a>", malformed},
        {"<a>&#6a;</a>", malformed},
        {"<a>&#xg;</a>", malformed},
        {"<a>&#x0x41;</a>", malformed},
        {"<a>&#0;</a>", malformed},
        {"<a>&#x0;</a>", malformed},
        {"<a>&#1;</a>", malformed},
        {"<a>&#8;</a>", malformed},
        {"<a>&#11;</a>", malformed},
        {"<a>&#31;</a>", malformed},
        {"<a>&#xD800;</a>", malformed},
        {"<a>&#xDFFF;</a>", malformed},
        {"<a>&#xFFFE;</a>", malformed},
        {"<a>&#xFFFF;</a>", malformed},
        {"<a>&#x110000;</a>", malformed},
        {"<a>&#4294967361;</a>", malformed},
        {"<a>&#x100000041;</a>", malformed},
        {"<a>&#99999999999;</a>", malformed},
        {"<a>&lt</a>;", malformed},
        {"<a>%amp;</a>", scanned},
        {"<a>;&amp;;</a>", scanned},
    };
    testing::expectVerdicts(cases);
}

TEST(XMLScanCases, Text) {
    constexpr XMLCase cases[] = {
        {"<a>text</a>", scanned},        {"<a> \t\n </a>", scanned},
        {"<a>x\r\ny\rz\n</a>", scanned}, {"<a>\r</a>", scanned},
        {"<a>\r\r\n\n</a>", scanned},    {"<a>x > y \" ' = / ? ! -- </a>", scanned},
        {"<a>]</a>", scanned},           {"<a>]]</a>", scanned},
        {"<a>] ]></a>", scanned},        {"<a>]>]</a>", scanned},
        {"<a>]]<!-- -->></a>", scanned}, {"<a>]]]]]]</a>", scanned},
        {"<a>\x7F</a>", scanned},        {"<a>\xC2\x80\xC2\x85\xE2\x80\xA8</a>", scanned},
        {"<a>]]></a>", malformed},       {"<a>x]]>y</a>", malformed},
        {"<a>]]]></a>", malformed},      {"<a>]]]]]]]]></a>", malformed},
        {"<a>\0</a>"sv, malformed},      {"<a>x\0y</a>"sv, malformed},
        {"<a>\x01</a>", malformed},      {"<a>\x08</a>", malformed},
        {"<a>\x0B</a>", malformed},      {"<a>\x0C</a>", malformed},
        {"<a>\x1B[0m</a>", malformed},   {"<a>\x1F</a>", malformed},
    };
    testing::expectVerdicts(cases);
}

TEST(XMLScanCases, UTF8) {
    constexpr XMLCase cases[] = {
        {"<a>\xC2\x80</a>", scanned},
        {"<a>\xDF\xBF</a>", scanned},
        {"<a>\xE0\xA0\x80</a>", scanned},
        {"<a>\xED\x9F\xBF</a>", scanned},
        {"<a>\xEE\x80\x80</a>", scanned},
        {"<a>\xEF\xBF\xBD</a>", scanned},
        {"<a>\xF0\x90\x80\x80</a>", scanned},
        {"<a>\xF4\x8F\xBF\xBF</a>", scanned},
        {"<a>\xF0\x9F\x98\x80\xE6\x9D\xB1x\xC3\xA9</a>", scanned},
        {"<a>\xEF\xBB\xBF</a>", scanned},
        {"<a>\xEF\xBF\xBE</a>", malformed},
        {"<a>\xEF\xBF\xBF</a>", malformed},
        {"<a>\x80</a>", malformed},
        {"<a>\xBF</a>", malformed},
        {"<a>\xC0\x80</a>", malformed},
        {"<a>\xC1\xBF</a>", malformed},
        {"<a>\xC2</a>", malformed},
        {"<a>\xC2 </a>", malformed},
        {"<a>\xC2\xC2</a>", malformed},
        {"<a>\xE0\x80\x80</a>", malformed},
        {"<a>\xE0\x9F\xBF</a>", malformed},
        {"<a>\xE2\x82</a>", malformed},
        {"<a>\xE2\x82x</a>", malformed},
        {"<a>\xED\xA0\x80</a>", malformed},
        {"<a>\xED\xBF\xBF</a>", malformed},
        {"<a>\xED\xA0\x81\xED\xB0\x81</a>", malformed},
        {"<a>\xF0\x80\x80\x80</a>", malformed},
        {"<a>\xF0\x8F\xBF\xBF</a>", malformed},
        {"<a>\xF0\x9F\x98</a>", malformed},
        {"<a>\xF4\x90\x80\x80</a>", malformed},
        {"<a>\xF5\x80\x80\x80</a>", malformed},
        {"<a>\xF8\x88\x80\x80\x80</a>", malformed},
        {"<a>\xFE</a>", malformed},
        {"<a>\xFF</a>", malformed},
        {"<a>caf\xE9</a>", malformed},
        {"<a><!-- \xE9 --></a>", malformed},
        {"<a><![CDATA[\xE9]]></a>", malformed},
        {"<a><?p \xE9?></a>", malformed},
    };
    testing::expectVerdicts(cases);
}

TEST(XMLScanCases, Sections) {
    constexpr XMLCase cases[] = {
        {"<a><![CDATA[]]></a>", scanned},
        {"<a><![CDATA[x]]></a>", scanned},
        {"<a>x<![CDATA[y]]>z</a>", scanned},
        {"<a><![CDATA[<b>&amp;</b>]]></a>", scanned},
        {"<a><![CDATA[]]]]></a>", scanned},
        {"<a><![CDATA[]]]]]]></a>", scanned},
        {"<a><![CDATA[]>]]></a>", scanned},
        {"<a><![CDATA[x]] >]]></a>", scanned},
        {"<a><![CDATA[]]]]><![CDATA[>]]></a>", scanned},
        {"<a><![CDATA[<![CDATA[]]></a>", scanned},
        {"<a><![CDATA[\r\n\r]]></a>", scanned},
        {"<a> <![CDATA[ ]]> </a>", scanned},
        {"<a><![CDATA[\xE6\x9D\xB1 -- ?> -->]]></a>", scanned},
        {"<a><![CDATA[<![CDATA[]]>]]></a>", malformed},
        {"<a><![CDATA[</a>", malformed},
        {"<a><![CDATA[]]</a>", malformed},
        {"<a><![CDATA[]]&gt;</a>", malformed},
        {"<a><![cdata[]]></a>", malformed},
        {"<a><![CDATA []]></a>", malformed},
        {"<a><! [CDATA[]]></a>", malformed},
        {"<a><![CDATA]]></a>", malformed},
        {"<a><![CDAT[x]]></a>", malformed},
        {"<a><![]]></a>", malformed},
        {"<a><![CDATA[\x01]]></a>", malformed},
        {"<a><![CDATA[\0]]></a>"sv, malformed},
        {"<a><![CDATA[\xEF\xBF\xBF]]></a>", malformed},
    };
    testing::expectVerdicts(cases);
}

TEST(XMLScanCases, Comments) {
    constexpr XMLCase cases[] = {
        {"<a><!----></a>", scanned},
        {"<a><!-- x --></a>", scanned},
        {"<a>x<!-- y -->z</a>", scanned},
        {"<!-- x --><a/><!-- y -->", scanned},
        {"<!-- x -->\n<!-- y -->\n<a/>", scanned},
        {"<a><!-- - -></a>--></a>", scanned},
        {"<a><!-- <b> & ]]> &no; <?x ?> --></a>", scanned},
        {"<a><!-- - - > -> --></a>", scanned},
        {"<a><!-- \xE6\x9D\xB1 --></a>", scanned},
        {"<a><!--\r\n--></a>", scanned},
        {"<a><!-- -- --></a>", malformed},
        {"<a><!-- x ---></a>", malformed},
        {"<a><!---></a>", malformed},
        {"<a><!--></a>", malformed},
        {"<a><!--->--></a>", scanned},
        {"<a><!-----></a>", malformed},
        {"<a><!-></a>", malformed},
        {"<a><!- x --></a>", malformed},
        {"<a><! -- x --></a>", malformed},
        {"<a><!-- x", malformed},
        {"<a><!-- x --", malformed},
        {"<a><!-- x -></a>", malformed},
        {"<a/><!-- x", malformed},
        {"<!-- x <a/>", malformed},
        {"<a><!-- \x01 --></a>", malformed},
        {"<a><!-- \0 --></a>"sv, malformed},
        {"<a <!-- x -->/>", malformed},
        {"<a></a <!-- x -->>", malformed},
        {"<a b='<!-- x -->'/>", malformed},
    };
    testing::expectVerdicts(cases);
}

TEST(XMLScanCases, Instructions) {
    constexpr XMLCase cases[] = {
        {"<a><?p?></a>", scanned},
        {"<a><?p ?></a>", scanned},
        {"<a><?p q r='s'?></a>", scanned},
        {"<a><?p ?"
         "?></a>",
         scanned},
        {"<a><?p ? > ?></a>", scanned},
        {"<a><?p <b> & ]]> -- ?></a>", scanned},
        {"<?p?><a/><?q?>", scanned},
        {"<?xml-stylesheet href='x'?><a/>", scanned},
        {"<?xmlx?><a/>", scanned},
        {"<a>x<?p?>y</a>", scanned},
        {"<a><?p \xE6\x9D\xB1?></a>", scanned},
        {"<a><?p:q?></a>", accepted},
        {"<a><?\xC3\xA9?></a>", accepted},
        {"<a><?p\xC3\xA9 ?></a>", accepted},
        {"<a><?"
         "?></a>",
         malformed},
        {"<a><? ?></a>", malformed},
        {"<a><? p?></a>", malformed},
        {"<a><?1?></a>", malformed},
        {"<a><?p></a>", malformed},
        {"<a><?p q></a>", malformed},
        {"<a><?p", malformed},
        {"<a><?p ", malformed},
        {"<a><?p ?", malformed},
        {"<a><?p!?></a>", malformed},
        {"<a><?p?x?></a>", malformed},
        {"<a><?p\x01?></a>", malformed},
        {"<a><?p \0?></a>"sv, malformed},
        {"<a><?xml?></a>", malformed},
        {"<a><?XmL x?></a>", malformed},
        {"<a/><?p", malformed},
    };
    testing::expectVerdicts(cases);
}

TEST(XMLScanCases, DocumentTypes) {
    constexpr XMLCase cases[] = {
        {"<!DOCTYPE a><a/>", accepted},
        {"<!DOCTYPE a []><a/>", accepted},
        {"<!DOCTYPE b><a/>", accepted},
        {"<?xml version='1.0'?>\n<!DOCTYPE a>\n<a/>", accepted},
        {"<!DOCTYPE a SYSTEM 'a.dtd'><a/>", accepted},
        {"<!DOCTYPE a PUBLIC 'x' 'a.dtd'><a/>", accepted},
        {"<!DOCTYPE a [<!ENTITY e 'x'>]><a>&e;</a>", accepted},
        {"<!DOCTYPE a [<!ENTITY e 'x'>]><a b='&e;'/>", accepted},
        {"<!DOCTYPE a [<!ATTLIST a b CDATA 'c'>]><a/>", accepted},
        {"<!DOCTYPE a [<!ELEMENT a EMPTY>]><a>x</a>", accepted},
        {"<!DOCTYPE a [<!ENTITY amp 'x'>]><a>&amp;</a>", accepted},
        {"<!DOCTYPE><a/>", malformed},
        {"<!DOCTYPE a", malformed},
        {"<!DOCTYPE a [<a/>", malformed},
        {"<!doctype a><a/>", malformed},
        {"<!DOCTYPE a><!DOCTYPE a><a/>", malformed},
        {"<a/><!DOCTYPE a>", malformed},
        {"<a><!DOCTYPE a></a>", malformed},
        {"<!DOCTYPE a [<!ENTITY e '&e;'>]><a>&e;</a>", malformed},
        {"<!DOCTYPE a [<!ENTITY e '<b>'>]><a>&e;</a>", malformed},
        {"<a><!ENTITY e 'x'></a>", malformed},
        {"<!ELEMENT a EMPTY><a/>", malformed},
        {"<a><!></a>", malformed},
    };
    testing::expectVerdicts(cases);
}

TEST(XMLScanCases, EncodingsAndMarks) {
    constexpr XMLCase cases[] = {
        {"\xEF\xBB\xBF<a/>", scanned},
        {"\xEF\xBB\xBF<?xml version='1.0' encoding='UTF-8'?><a>\xC3\xA9</a>", scanned},
        {"\xEF\xBB\xBF<?xml version='1.0' encoding='ISO-8859-1'?><a>\xC3\xA9</a>", scanned},
        {"<?xml version='1.0' encoding='ISO-8859-1'?><a b='\xE9'>\xE9\r\n</a>", scanned},
        {"<?xml version='1.0' encoding='windows-1252'?><a>\x80</a>", scanned},
        {"\xFF\xFE<\0a\0/\0>\0"sv, scanned},
        {"\xFE\xFF\0<\0a\0/\0>"sv, scanned},
        {"\xFF\xFE\0\0<\0\0\0a\0\0\0/\0\0\0>\0\0\0"sv, scanned},
        {"\xEF\xBB\xBF\xEF\xBB\xBF<a/>", malformed},
        {" \xEF\xBB\xBF<a/>", malformed},
        {"<a/>\xEF\xBB\xBF", malformed},
        {"\xEF\xBB\xBF", malformed},
        {"\xEF\xBB<a/>", malformed},
        {"\xFF\xFE<\0a\0/\0>"sv, malformed},
        {"\xFF\xFE<\0a\0>\0\0\xD8<\0/\0a\0>\0"sv, malformed},
        {"<?xml version='1.0' encoding='UTF-16'?><a/>", malformed},
        {"<?xml version='1.0' encoding='US-ASCII'?><a>\xC3\xA9</a>", malformed},
        {"<?xml version='1.0' encoding='windows-1252'?><a>\x81</a>", malformed},
        {"<?xml version='1.0' encoding='UTF-8'?><a>\xE9</a>", malformed},
    };
    testing::expectVerdicts(cases);
}

TEST(XMLScanCases, ADocumentThatEndsAnywhere) {
    const std::string document =
        "<?xml version='1.0' encoding='UTF-8'?>\n<!-- c -->\n<?p i?>\n"
        "<gpx xmlns='u' xmlns:p=\"v\" a='1&amp;2'>\r\n  <p:b c=\"\xC3\xA9\" p:c='2'/>\n"
        "  <trk>x &lt; \xE6\x9D\xB1\xF0\x9F\x98\x80 ]] &#x41;<![CDATA[ ]]]]><!-- d --></trk>\n"
        "  <trk>x</trk>\n  <?q?>\n</gpx\n>";
    const std::string behind = "\n<!-- e -->\n<?r?>\n";
    for (std::size_t size = 0; size < document.size(); ++size) {
        expectVerdict(document.substr(0, size), malformed);
    }
    expectVerdict(document, scanned);
    expectVerdict(document + behind, scanned);
}

/// Text in front of them moves the pieces over the ends of the windows.
TEST(XMLScanCases, WhatTheEndOfAWindowCuts) {
    constexpr XMLCase pieces[] = {
        {"]]>", malformed},
        {"]]]]>", malformed},
        {"&no;", malformed},
        {"&#x110000;", malformed},
        {"\xC3", malformed},
        {"\xF0\x9F\x98", malformed},
        {"\xED\xA0\x80", malformed},
        {"\x01", malformed},
        {"\0"sv, malformed},
        {"<!-- -- -->", malformed},
        {"<?p", malformed},
        {"</b>", malformed},
        {"<b c='1' c='2'/>", malformed},
        {"]]", scanned},
        {"]]&gt;", scanned},
        {"]] >", scanned},
        {"&#x10FFFF;", scanned},
        {"\xF0\x9F\x98\x80", scanned},
        {"\xEF\xBF\xBD", scanned},
        {"\r\n\r\n", scanned},
        {"<!-- - -->", scanned},
        {"<?p ? ?>", scanned},
        {"<![CDATA[ ]]>", scanned},
        {"<![CDATA[]]]]>", scanned},
        {"<b c='1&amp;'/>", scanned},
        {"<b>\n</b >", scanned},
    };
    for (const XMLCase &piece : pieces) {
        for (std::size_t size = 0; size < 70; ++size) {
            std::string document = "<a>";
            document.append(size, 'x').append(piece.text);
            expectVerdict(document + "y</a>", piece.verdict);
        }
    }
}

TEST(XMLScanCases, AnyByteAnywhere) {
    const std::string document = "<?xml version='1.0'?><a b='c'>d&amp;<!--e--><?f g?><h/></a>\n";
    for (std::size_t i = 0; i < document.size(); ++i) {
        for (const char byte : "\0\x01\t\n\r !\"#&'-./019:;<=>?AX[]a_x\x7F\x80\xC3\xE9\xFF"sv) {
            std::string changed = document;
            changed[i] = byte;
            const testing::XMLEngineComparison comparison(changed);
            EXPECT_EQ(comparison.difference(), "") << changed;
            std::string longer = document;
            longer.insert(i, 1, byte);
            const testing::XMLEngineComparison comparisonOfLonger(longer);
            EXPECT_EQ(comparisonOfLonger.difference(), "") << longer;
        }
    }
}

} // namespace
} // namespace pelluvia
