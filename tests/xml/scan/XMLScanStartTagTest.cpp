// SPDX-License-Identifier: MIT

#include <Pelluvia/xml/internal/scan/Bytes.h>
#include <Pelluvia/xml/internal/scan/Characters.h>
#include <Pelluvia/xml/internal/scan/StartTag.h>

#include <cstddef>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <vector>

namespace pelluvia::xml::scan {
namespace {

using namespace std::string_view_literals;

/// A text with zeros behind, as the functions want it.
struct Scanned {
    explicit Scanned(std::string_view text) : bytes(text.begin(), text.end()) {
        bytes.resize(text.size() + padding);
    }
    [[nodiscard]] char *begin() { return bytes.data(); }
    [[nodiscard]] const char *end() const { return bytes.data() + bytes.size() - padding; }
    std::vector<char> bytes;
};

std::string_view nameOf(Look look) {
    return look == Look::complete ? "complete" : look == Look::cutOff ? "cut off" : "refused";
}

std::string_view lookAt(std::string_view text) {
    Scanned scanned(text);
    StartTag tag;
    return nameOf(readStartTag(scanned.begin(), scanned.end(), tag));
}

std::string textOf(const std::vector<StartTag::Attribute> &attributes) {
    std::string text;
    for (const StartTag::Attribute &each : attributes) {
        text.append(" ").append(each.name.prefix).append("|").append(each.name.local);
        text.append(each.isPlain ? "=" : "~").append(each.text());
    }
    return text;
}

/// A tag taken apart: prefix|local attributes + declarations, what it closes with, what follows.
std::string parts(std::string_view text) {
    Scanned scanned(text);
    StartTag tag;
    const Look look = readStartTag(scanned.begin(), scanned.end(), tag);
    if (look != Look::complete) {
        return std::string(nameOf(look));
    }
    EXPECT_EQ(*tag.close, tag.isEmpty ? '/' : '>');
    std::string all(tag.name.prefix);
    all.append("|").append(tag.name.local).append(textOf(tag.attributes));
    all.append(" +").append(textOf(tag.declarations));
    all.append(" ").append(tag.close, tag.end).append(" ").append(tag.end, scanned.end());
    return all;
}

TEST(ScanStartTag, IsTakenApart) {
    EXPECT_EQ(parts("<a>b"), "|a + > b");
    EXPECT_EQ(parts("<a/>"), "|a + /> ");
    EXPECT_EQ(parts("<p:a >"), "p|a + > ");
    EXPECT_EQ(parts("<a b='c' p:d = \"e'\"\n\t/>f"), "|a |b=c p|d=e' + /> f");
    EXPECT_EQ(parts("<a xmlns='u' b='1' xmlns:p='v'>"), "|a |b=1 + |xmlns=u xmlns|p=v > ");
    EXPECT_EQ(parts("<a b=''>"), "|a |b= + > ");
}

TEST(ScanStartTag, TellsWhichValuesMeanWhatTheySay) {
    EXPECT_EQ(parts("<a b='x y > ]]> =' c=\"'\">"), "|a |b=x y > ]]> = |c=' + > ");
    EXPECT_EQ(parts("<a b='&amp;' c='\t' d='\n' e='\xC3\xA9' f='x'>"),
              "|a |b~&amp; |c~\t |d~\n |e~\xC3\xA9 |f=x + > ");
}

TEST(ScanStartTag, IsUsedAgainWithoutWhatItHeld) {
    Scanned first("<a b='c' xmlns='u'/>");
    Scanned second("<d>");
    StartTag tag;
    EXPECT_EQ(readStartTag(first.begin(), first.end(), tag), Look::complete);
    EXPECT_EQ(readStartTag(second.begin(), second.end(), tag), Look::complete);
    EXPECT_TRUE(tag.attributes.empty());
    EXPECT_TRUE(tag.declarations.empty());
    EXPECT_FALSE(tag.isEmpty);
}

TEST(ScanStartTag, IsCutOffAtEveryByteButTheLast) {
    for (const std::string_view tag :
         {"<a>"sv, "<a/>"sv, "<p:a b='c' xmlns:d = \"e\" />"sv, "<a b='&amp;&#x41;x'>"sv,
          "<a b=\"\xC3\xA9\xE6\x9D\xB1\xF0\x9F\x98\x80\"\n>"sv}) {
        for (std::size_t size = 1; size < tag.size(); ++size) {
            EXPECT_EQ(lookAt(tag.substr(0, size)), "cut off") << tag.substr(0, size);
        }
        EXPECT_EQ(lookAt(tag), "complete");
    }
}

TEST(ScanStartTag, IsRefused) {
    for (const std::string_view tag : {"<>"sv,
                                       "< a>"sv,
                                       "<1>"sv,
                                       "<-a>"sv,
                                       "<a:>"sv,
                                       "<:a>"sv,
                                       "<a:b:c>"sv,
                                       "<a:1>"sv,
                                       "<a\xC3\xA9>"sv,
                                       "<\xC3\xA9>"sv,
                                       "<a\0>"sv,
                                       "<a\x01>"sv,
                                       "<a<b>"sv,
                                       "<a&>"sv,
                                       "<a//>"sv,
                                       "<a/ >"sv,
                                       "<a/b>"sv,
                                       "<a b>"sv,
                                       "<a b/>"sv,
                                       "<a b=>"sv,
                                       "<a b=c>"sv,
                                       "<a ='c'>"sv,
                                       "<a 'c'>"sv,
                                       "<a b='c'd='e'>"sv,
                                       "<a b='c' b='d'>"sv,
                                       "<a p:b='c' p:b='d'>"sv,
                                       "<a p:b='c' q:b='d'>"sv,
                                       "<a xmlns='u' xmlns='v'>"sv,
                                       "<a xmlns:p='u' xmlns:p='v'>"sv,
                                       "<a b:='c'>"sv,
                                       "<a b:c:d='e'>"sv,
                                       "<a b='<'                 />"sv,
                                       "<a b='&no;'               />"sv,
                                       "<a b='\x01'               />"sv,
                                       "<a b='\0'               />"sv,
                                       "<a b='\xFF'               />"sv,
                                       "<a \xC3\xA9='b'>"sv}) {
        EXPECT_EQ(lookAt(tag), "refused") << tag;
    }
}

TEST(ScanStartTag, WhatMayBeCutOffNearTheEndIsLookedAtAgain) {
    EXPECT_EQ(lookAt("<a b='&no;'"), "cut off");
    EXPECT_EQ(lookAt("<a b='\xC3"), "cut off");
    EXPECT_EQ(lookAt("<a b='&no;'0123456789a"), "refused");
    EXPECT_EQ(lookAt("<a b='\xFF'0123456789abcd"), "refused");
}

TEST(ScanStartTag, HasNoMoreThanItMayHave) {
    std::string attributes;
    std::string declarations;
    for (std::size_t i = 0; i < StartTag::mostAttributes; ++i) {
        attributes.append(" a").append(std::to_string(i)).append("=''");
        declarations.append(" xmlns:a").append(std::to_string(i)).append("='u'");
    }
    EXPECT_EQ(lookAt("<a" + attributes + declarations + ">"), "complete");
    EXPECT_EQ(lookAt("<a" + attributes + " b=''>"), "refused");
    EXPECT_EQ(lookAt("<a" + declarations + " xmlns=''>"), "refused");
    const std::string name(QualifiedName::longest, 'n');
    EXPECT_EQ(lookAt("<" + name + " " + name + "=''>"), "complete");
    EXPECT_EQ(lookAt("<" + name + "n>"), "refused");
    EXPECT_EQ(lookAt("<a " + name + "n=''>"), "refused");
    EXPECT_EQ(lookAt("<" + name + "n"), "cut off");
}

std::string normalised(std::string_view value) {
    Scanned scanned(value);
    StartTag::Attribute attribute;
    attribute.begin = scanned.begin();
    attribute.end = scanned.begin() + value.size();
    normalise(attribute);
    EXPECT_EQ(attribute.begin, scanned.begin());
    return std::string(attribute.text());
}

TEST(ScanAttribute, IsNormalisedInItsPlace) {
    EXPECT_EQ(normalised(""), "");
    EXPECT_EQ(normalised("a b"), "a b");
    EXPECT_EQ(normalised("\ta\nb  "), " a b  ");
    EXPECT_EQ(normalised("&lt;&amp;lt;&gt;"), "<&lt;>");
    EXPECT_EQ(normalised("&#9;&#10;&#13;&#x20;"), "\t\n\r ") << "references stay what they are";
    EXPECT_EQ(normalised("\xC3\xA9&#233;&#x1F600;"), "\xC3\xA9\xC3\xA9\xF0\x9F\x98\x80");
}

/// No reference is shorter than what it stands for.
TEST(ScanAttribute, NeverOutgrowsItsPlace) {
    for (const char *reference : {"&#1;", "&#9;", "&lt;", "&#65;", "&#x80;", "&#128;", "&#x7FF;",
                                  "&#2047;", "&#x800;", "&#2048;", "&#x10000;", "&#65536;"}) {
        const char *at = reference;
        EXPECT_LE(readReference(at).size, std::string_view(reference).size());
    }
}

std::string_view lookAtEnd(std::string_view text, std::string_view name,
                           std::string_view rest = {}) {
    const Scanned scanned(text);
    const char *end = nullptr;
    const Look look = readEndTag(scanned.bytes.data(), scanned.end(), name, end);
    if (look == Look::complete) {
        EXPECT_EQ(std::string_view(end, static_cast<std::size_t>(scanned.end() - end)), rest);
    }
    return nameOf(look);
}

TEST(ScanEndTag, HasTheNameOfTheElement) {
    EXPECT_EQ(lookAtEnd("</a>", "a"), "complete");
    EXPECT_EQ(lookAtEnd("</p:a \n\t>b", "p:a", "b"), "complete");
    for (const std::string_view tag : {"</b>"sv, "</ab>"sv, "</A>"sv, "</ a>"sv, "</a/>"sv,
                                       "</a b>"sv, "</>"sv, "</p:a>"sv, "</a\0>"sv, "</a<"sv}) {
        EXPECT_EQ(lookAtEnd(tag, "a"), "refused") << tag;
    }
    EXPECT_EQ(lookAtEnd("</a>", "ab"), "refused");
}

TEST(ScanEndTag, IsCutOffAtEveryByteButTheLast) {
    constexpr std::string_view tag = "</p:abc \n>";
    for (std::size_t size = 2; size < tag.size(); ++size) {
        EXPECT_EQ(lookAtEnd(tag.substr(0, size), "p:abc"), "cut off") << size;
    }
}

} // namespace
} // namespace pelluvia::xml::scan
