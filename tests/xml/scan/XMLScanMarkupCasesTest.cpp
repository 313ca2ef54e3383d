// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>
#include <string_view>
#include <tests/support/XMLCase.h>

/// \file
/// Declarations, tags, names, attributes and namespaces, right and wrong.

namespace pelluvia {
namespace {

using namespace std::string_view_literals;
using testing::expectVerdict;
using testing::XMLCase;
using enum testing::XMLVerdict;

TEST(XMLScanCases, TheXMLDeclaration) {
    constexpr XMLCase cases[] = {
        {"<?xml version=\"1.0\"?><a/>", scanned},
        {"<?xml version='1.0'?><a/>", scanned},
        {"<?xml version = '1.0' ?><a/>", scanned},
        {"<?xml version\n=\n'1.0'\n?>\n<a/>", scanned},
        {"<?xml   version='1.0'   encoding='UTF-8'   standalone='yes'   ?><a/>", scanned},
        {"<?xml version='1.0' encoding='utf-8'?><a/>", scanned},
        {"<?xml version='1.0' encoding=\"utf8\"?><a/>", scanned},
        {"<?xml version='1.0' standalone='no'?><a/>", scanned},
        {"<?xml version='1.0' encoding='US-ASCII'?><a/>", scanned},
        {"<?xml\tversion='1.0'?><a/>", accepted},
        {"<?xml\nversion='1.0'?><a/>", accepted},
        {"<?xml version='1.1'?><a/>", accepted},
        {"<?xml version='1.7'?><a/>", accepted},
        {"<?xml version='2.0'?><a/>", malformed},
        {"<?xml version='1'?><a/>", malformed},
        {"<?xml version=''?><a/>", malformed},
        {"<?xml version='1.0 '?><a/>", malformed},
        {"<?xml version=1.0?><a/>", malformed},
        {"<?xml version='1.0\"?><a/>", malformed},
        {"<?xml version='1.0'><a/>", malformed},
        {"<?xml version='1.0'/><a/>", malformed},
        {"<?xml version='1.0'?"
         "?><a/>",
         malformed},
        {"<?xml version='1.0'? ><a/>", malformed},
        {"<?xml?><a/>", malformed},
        {"<?xml ?><a/>", malformed},
        {"<?xml encoding='UTF-8'?><a/>", malformed},
        {"<?xml standalone='yes'?><a/>", malformed},
        {"<?xml encoding='UTF-8' version='1.0'?><a/>", malformed},
        {"<?xml version='1.0' standalone='yes' encoding='UTF-8'?><a/>", malformed},
        {"<?xml version='1.0' version='1.0'?><a/>", malformed},
        {"<?xml version='1.0' encoding='UTF-8' encoding='UTF-8'?><a/>", malformed},
        {"<?xml version='1.0' standalone='maybe'?><a/>", malformed},
        {"<?xml version='1.0' standalone='YES'?><a/>", malformed},
        {"<?xml version='1.0' standalone=''?><a/>", malformed},
        {"<?xml version='1.0' encoding=''?><a/>", malformed},
        {"<?xml version='1.0' encoding=' UTF-8'?><a/>", malformed},
        {"<?xml version='1.0' encoding='-8'?><a/>", malformed},
        {"<?xml version='1.0' encoding='UTF_8!'?><a/>", malformed},
        {"<?xml version='1.0' encoding=UTF-8?><a/>", malformed},
        {"<?xml version='1.0' encoding='not-known-anywhere'?><a/>", malformed},
        {"<?xml version='1.0' other='x'?><a/>", malformed},
        {"<?xml version='1.0'encoding='UTF-8'?><a/>", malformed},
        {"<?XML version='1.0'?><a/>", malformed},
        {"<?Xml version='1.0'?><a/>", malformed},
        {" <?xml version='1.0'?><a/>", malformed},
        {"\n<?xml version='1.0'?><a/>", malformed},
        {"<!-- --><?xml version='1.0'?><a/>", malformed},
        {"<?xml version='1.0'?><?xml version='1.0'?><a/>", malformed},
        {"<a/><?xml version='1.0'?>", malformed},
        {"<a><?xml version='1.0'?></a>", malformed},
        {"<?xml version='1.0'?>", malformed},
        {"<?xml version='1.0'", malformed},
        {"<? xml version='1.0'?><a/>", malformed},
    };
    testing::expectVerdicts(cases);
}

TEST(XMLScanCases, TheRoot) {
    constexpr XMLCase cases[] = {
        {"<a/>", scanned},
        {"<a></a>", scanned},
        {"<a />", scanned},
        {"<a\n\t />", scanned},
        {"<a></a >", scanned},
        {"<a></a\n>", scanned},
        {"<a >b</a>", scanned},
        {"\n\t <a/>\n\t ", scanned},
        {"\r\n<a/>\r\n", scanned},
        {"", malformed},
        {" ", malformed},
        {"\n\n", malformed},
        {"x", malformed},
        {"<", malformed},
        {"<a", malformed},
        {"<a>", malformed},
        {"<a>b", malformed},
        {"<a/", malformed},
        {"<a></", malformed},
        {"<a></a", malformed},
        {"<a/><b/>", malformed},
        {"<a></a><a></a>", malformed},
        {"<a/>text", malformed},
        {"text<a/>", malformed},
        {"<a/>&amp;", malformed},
        {"&amp;<a/>", malformed},
        {"<a/><![CDATA[]]>", malformed},
        {"<![CDATA[]]><a/>", malformed},
        {"</a>", malformed},
        {"<a/></a>", malformed},
        {"<!-- only -->", malformed},
        {"<?only this?>", malformed},
        {"<a/>\0"sv, accepted},
        {"<a/><", malformed},
        {"<a/>>", malformed},
        {"><a/>", malformed},
    };
    testing::expectVerdicts(cases);
}

TEST(XMLScanCases, Nesting) {
    constexpr XMLCase cases[] = {
        {"<a><b><c/></b><b/></a>", scanned},
        {"<a><a><a></a></a></a>", scanned},
        {"<a>1<b>2</b>3<b>4</b>5</a>", scanned},
        {"<a.b><a.b-c/><_/></a.b>", scanned},
        {"<a></b>", malformed},
        {"<a></A>", malformed},
        {"<a></ab>", malformed},
        {"<ab></a>", malformed},
        {"<a><b></a></b>", malformed},
        {"<a><b></a>", malformed},
        {"<a><b/></b></a>", malformed},
        {"<a></a b='c'>", malformed},
        {"<a></a/>", malformed},
        {"<a></ a>", malformed},
        {"<a>< /a>", malformed},
        {"<a><//a>", malformed},
        {"<a></>", malformed},
        {"<a><></a>", malformed},
        {"<p:a xmlns:p='u'></a>", malformed},
        {"<a xmlns='u' xmlns:p='u'></p:a>", malformed},
        {"<p:a xmlns:p='u' xmlns:q='u'></q:a>", malformed},
        {"<a><b></b></a></a>", malformed},
    };
    testing::expectVerdicts(cases);
}

TEST(XMLScanCases, Names) {
    constexpr XMLCase cases[] = {
        {"<_/>", scanned},
        {"<_a/>", scanned},
        {"<a1-2.3_4/>", scanned},
        {"<ABCxyz/>", scanned},
        {"<xml.a/>", scanned},
        {"<XMLa/>", scanned},
        {"<a \xC3\xA9='1'/>", accepted},
        {"<\xC3\xA9/>", accepted},
        {"<a\xC3\xA9></a\xC3\xA9>", accepted},
        {"<a\xCC\x81/>", accepted},
        {"<\xE6\x9D\xB1/>", accepted},
        {"<\xF0\x90\x80\x80/>", accepted},
        {"<a\xC2\xB7/>", accepted},
        {"<p:\xC3\xA9 xmlns:p='u'/>", accepted},
        {"<:/>", accepted},
        {"<a:/>", accepted},
        {"<:a/>", accepted},
        {"<a:b:c/>", accepted},
        {"<a:1/>", accepted},
        {"<a::b/>", accepted},
        {"<a \xC2\xA0='1'/>", malformed},
        {"<a\xC3\x97/>", malformed},
        {"<1/>", malformed},
        {"<1a/>", malformed},
        {"<-a/>", malformed},
        {"<.a/>", malformed},
        {"<a$/>", malformed},
        {"<a,b/>", malformed},
        {"<a;b/>", malformed},
        {"<a'/>", malformed},
        {"<a\"/>", malformed},
        {"<a=/>", malformed},
        {"<a=b/>", malformed},
        {"<a&amp;/>", malformed},
        {"<a<b/>", malformed},
        {"<a\0/>"sv, malformed},
        {"<a\x01/>", malformed},
        {"<\xC2\xB7/>", malformed},
        {"<\xCC\x81"
         "a/>",
         malformed},
        {"< a/>", malformed},
        {"<\na/>", malformed},
        {"<a/ >", malformed},
        {"<a//>", malformed},
        {"<a/b/>", malformed},
    };
    testing::expectVerdicts(cases);
}

TEST(XMLScanCases, Attributes) {
    constexpr XMLCase cases[] = {
        {"<a b='c'/>", scanned},
        {"<a b=\"c\"/>", scanned},
        {"<a b='\"' c=\"'\"/>", scanned},
        {"<a b=''/>", scanned},
        {"<a b = 'c'/>", scanned},
        {"<a b\n=\t'c' />", scanned},
        {"<a\nb='c'\nd='e'\n>\n</a>", scanned},
        {"<a b='>'/>", scanned},
        {"<a b='/>'/>", scanned},
        {"<a b=']]>'/>", scanned},
        {"<a b='x y  z'/>", scanned},
        {"<a b=' x '/>", scanned},
        {"<a b='x\ty\nz'/>", scanned},
        {"<a b='x\r\ny\rz'/>", scanned},
        {"<a b='&#9;&#10;&#13;&#32;'/>", scanned},
        {"<a b='&lt;&gt;&amp;&quot;&apos;'/>", scanned},
        {"<a b='&#60;&#38;&#x22;&#39;'/>", scanned},
        {"<a b='\xC3\xA9\xE6\x9D\xB1\xF0\x9F\x98\x80'/>", scanned},
        {"<a b='1' B='2'/>", scanned},
        {"<a b='1' p:b='2'/>", scanned},
        {"<a xml:lang='de' xml:space='preserve' xml:base='x'/>", scanned},
        {"<a xml:space='other'/>", scanned},
        {"<a xml:lang='?"
         "?'/>",
         scanned},
        {"<a p:b='1' p:c='2'/>", scanned},
        {"<a id='1' idx='2'/>", scanned},
        {"<a xmlnsb='1'/>", scanned},
        {"<a p:b='1' q:b='2'/>", accepted},
        {"<a :b='1'/>", accepted},
        {"<a b:='1'/>", accepted},
        {"<a b='1' b='2'/>", malformed},
        {"<a b='1' c='2' b='1'/>", malformed},
        {"<a p:b='1' p:b='2'/>", malformed},
        {"<a b/>", malformed},
        {"<a b></a>", malformed},
        {"<a b=/>", malformed},
        {"<a b=c/>", malformed},
        {"<a b=c'/>", malformed},
        {"<a b='c/>", malformed},
        {"<a b='c\"/>", malformed},
        {"<a b=\"c'/>", malformed},
        {"<a b='c'd='e'/>", malformed},
        {"<a b='c'=/>", malformed},
        {"<a b=='c'/>", malformed},
        {"<a ='c'/>", malformed},
        {"<a 'c'/>", malformed},
        {"<a b='<'/>", malformed},
        {"<a b='<c/>'/>", malformed},
        {"<a b='&'/>", malformed},
        {"<a b='& '/>", malformed},
        {"<a b='&lt'/>", malformed},
        {"<a b='&nbsp;'/>", malformed},
        {"<a b='&#0;'/>", malformed},
        {"<a b='\0'/>"sv, malformed},
        {"<a b='\x01'/>", malformed},
        {"<a b='\xC3'/>", malformed},
        {"<a b='\xFF'/>", malformed},
        {"<a 1b='c'/>", malformed},
        {"<a -b='c'/>", malformed},
        {"<a b'c'/>", malformed},
        {"<a b c='d'/>", malformed},
        {"<a b='c',d='e'/>", malformed},
        {"<a/b='c'>", malformed},
        {"<a b='c'/ >", malformed},
        {"<a b='c' / >", malformed},
    };
    testing::expectVerdicts(cases);
}

TEST(XMLScanCases, Namespaces) {
    constexpr XMLCase cases[] = {
        {"<a xmlns='u'><b/></a>", scanned},
        {"<a xmlns='u'><b xmlns=''><c/></b><d/></a>", scanned},
        {"<a xmlns=''/>", scanned},
        {"<a xmlns='u' xmlns:p='u'><p:b/><b/></a>", scanned},
        {"<p:a xmlns:p='u'><p:b xmlns:p='v'><p:c/></p:b><p:d/></p:a>", scanned},
        {"<a xmlns:p='u'><b xmlns:p='u'><p:c/></b></a>", scanned},
        {"<a><p:b/><p:b xmlns:p='u'/><p:b/></a>", scanned},
        {"<p:a p:b='1'/>", scanned},
        {"<a xmlns:p='u' p:b='1' b='2'/>", scanned},
        {"<a p:b='1' xmlns:p='u' c='2' xmlns='v'/>", scanned},
        {"<a xmlns='not a uri'/>", accepted},
        {"<a xmlns='relative/path'/>", scanned},
        {"<a xmlns='x:#:#'/>", scanned},
        {"<a xmlns='http://www.topografix.com/GPX/1/1'><trk/></a>", scanned},
        {"<a xmlns='http://www.topografix.com/GPX/1/1/'><trk/></a>", scanned},
        {"<a xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' xsi:schemaLocation='u v'/>",
         scanned},
        {"<a xmlns='u&amp;v'/>", accepted},
        {"<a xmlns='u&#x41;'/>", accepted},
        {"<a xmlns='\xC3\xA9'/>", accepted},
        {"<a xmlns=' u '/>", accepted},
        {"<a xmlns='u\nv'/>", accepted},
        {"<a xmlns:p=''/>", accepted},
        {"<a xmlns:p='u'><b xmlns:p=''><p:c/></b></a>", accepted},
        {"<a xmlns:p='u' xmlns:q='u' p:b='1' q:b='2'/>", accepted},
        {"<a xmlns:p='u' xmlns:q='v' p:b='1' q:b='2'/>", accepted},
        {"<a xmlns:xml='http://www.w3.org/XML/1998/namespace'/>", accepted},
        {"<a xmlns:xml='u'/>", accepted},
        {"<a xmlns:xmlns='u'/>", accepted},
        {"<a xmlns:p='http://www.w3.org/XML/1998/namespace'/>", accepted},
        {"<a xmlns='http://www.w3.org/XML/1998/namespace'/>", accepted},
        {"<a xmlns='http://www.w3.org/2000/xmlns/'/>", accepted},
        {"<a xmlns:p='http://www.w3.org/2000/xmlns/'/>", accepted},
        {"<xml:a/>", accepted},
        {"<xmlns:a/>", accepted},
        {"<a xmlns='u' xmlns='v'/>", malformed},
        {"<a xmlns:p='u' xmlns:p='v'/>", malformed},
        {"<a xmlns:='u'/>", accepted},
        {"<a xmlns:p:q='u'/>", accepted},
        {"<a xmlns='<'/>", malformed},
        {"<a xmlns='u/>", malformed},
        {"<a xmlns/>", malformed},
    };
    testing::expectVerdicts(cases);
}

// The text of a tag is what elements are told apart by, so declarations must not blend into it.
TEST(XMLScanCases, ADeclarationThatLooksLikeTwo) {
    expectVerdict("<r><a xmlns:p='u' xmlns:q='v'/><a xmlns:p='u\nq=v'/></r>", accepted);
    expectVerdict("<r><a xmlns='u' xmlns:q='v'/><a xmlns='u\nq=v'/></r>", accepted);
    expectVerdict("<r><a xmlns='u'/><a xmlns='u&#10;'/></r>", accepted);
}

} // namespace
} // namespace pelluvia
