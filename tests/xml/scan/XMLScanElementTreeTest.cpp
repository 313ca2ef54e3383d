// SPDX-License-Identifier: MIT

#include <Pelluvia/xml/XMLParser.h>
#include <Pelluvia/xml/internal/scan/Bytes.h>
#include <Pelluvia/xml/internal/scan/ElementTree.h>

#include <array>
#include <cstddef>
#include <gtest/gtest.h>
#include <span>
#include <string>
#include <string_view>
#include <tests/support/Chance.h>
#include <utility>
#include <vector>

namespace pelluvia::xml::scan {
namespace {

constexpr std::array<std::string_view, 2> names = {"trk", "wpt"};
constexpr std::array<std::string_view, 2> namespaces = {"v", "u"};

/// A tree that start tags are put into.
class ScanElementTree : public ::testing::Test {
  protected:
    Element *child(Element *parent, std::string_view tagText) {
        std::vector<char> bytes(tagText.begin(), tagText.end());
        bytes.resize(tagText.size() + padding);
        StartTag tag;
        EXPECT_EQ(readStartTag(bytes.data(), bytes.data() + tagText.size(), tag), Look::complete);
        return tree.child(parent, tag); // nothing in it is a view on these bytes
    }

    /// prefix:name {URI}, with numbers.
    static std::string textOf(const Element *element) {
        if (element == nullptr) {
            return "null";
        }
        std::string text = element->name.qualifiedName();
        EXPECT_EQ(text, element->qualifiedName);
        text.append("#").append(std::to_string(element->name.nameNumber));
        text.append(" {").append(element->name.namespaceURI).append("}#");
        return text.append(std::to_string(element->name.namespaceNumber));
    }

    Vocabulary vocabulary{{.names = names, .namespaces = namespaces}};
    XMLParserDelegate nobody;
    ElementTree tree{vocabulary, nobody};
};

TEST_F(ScanElementTree, ResolvesPrefixesWhereTheyAreDeclared) {
    Element *const root = child(nullptr, "<gpx xmlns='u' xmlns:p='v'>");
    EXPECT_EQ(textOf(root), "gpx#0 {u}#2");
    EXPECT_EQ(root->depth, 1U);
    EXPECT_EQ(root->parent, nullptr);
    EXPECT_EQ(root->declared, 2U);
    ASSERT_EQ(root->declarations.size(), 2U);
    EXPECT_EQ(root->declarations[0].prefix, "");
    EXPECT_EQ(root->declarations[0].uri, "u");
    EXPECT_EQ(root->declarations[1].prefix, "p");
    EXPECT_EQ(root->declarations[1].uri, "v");
    Element *const track = child(root, "<trk>");
    EXPECT_EQ(textOf(track), "trk#1 {u}#2");
    EXPECT_EQ(track->depth, 2U);
    EXPECT_EQ(track->parent, root);
    EXPECT_EQ(track->declared, 2U);
    EXPECT_EQ(textOf(child(track, "<p:wpt/>")), "p:wpt#2 {v}#1");
    EXPECT_EQ(textOf(child(track, "<q:wpt>")), "q:wpt#2 {}#0") << "an undeclared prefix";
    EXPECT_EQ(textOf(child(track, "<q:a xmlns:q='w'>")), "q:a#0 {w}#0") << "in its own tag";
    EXPECT_EQ(textOf(child(track, "<q:a>")), "q:a#0 {}#0") << "and not behind it";
}

TEST_F(ScanElementTree, RedeclaresAndUndeclares) {
    Element *const root = child(nullptr, "<gpx xmlns='u' xmlns:p='u'>");
    Element *const inner = child(root, "<p:a xmlns='' xmlns:p='v'>");
    EXPECT_EQ(textOf(inner), "p:a#0 {v}#1");
    EXPECT_EQ(textOf(child(inner, "<b>")), "b#0 {}#0");
    EXPECT_EQ(textOf(child(inner, "<p:b>")), "p:b#0 {v}#1");
    EXPECT_EQ(textOf(child(root, "<p:b>")), "p:b#0 {u}#2");
    Element *const again = child(child(inner, "<b>"), "<c xmlns='v'>");
    EXPECT_EQ(textOf(again), "c#0 {v}#1");
    EXPECT_EQ(again->declared, 5U);
}

TEST_F(ScanElementTree, GivesTheSameElementForTheSameTagInTheSamePlace) {
    Element *const root = child(nullptr, "<gpx xmlns='u'>");
    EXPECT_EQ(child(nullptr, "<gpx a='1' xmlns='u' b='2'/>"), root) << "attributes do not count";
    Element *const track = child(root, "<trk>");
    EXPECT_EQ(child(root, "<trk />"), track);
    Element *const others[] = {child(root, "<trk xmlns='u'>"),
                               child(root, "<p:trk>"),
                               child(root, "<trkx>"),
                               child(track, "<trk>"),
                               child(nullptr, "<trk>"),
                               child(root, "<trk xmlns='v'>"),
                               child(root, "<trk xmlns:u='u'>"),
                               child(root, "<trk xmlns=''>"),
                               child(root, "<trk xmlns:p='uu'>"),
                               child(root, "<trk xmlns:pu='u'>"),
                               child(nullptr, "<gpx xmlns='v'/>"),
                               child(nullptr, "<gpx/>")};
    for (const Element *const each : others) {
        EXPECT_NE(each, nullptr);
        EXPECT_NE(each, track);
        EXPECT_NE(each, root);
    }
}

TEST_F(ScanElementTree, RefusesWhatIsUnusual) {
    Element *const root = child(nullptr, "<gpx xmlns:p='u' xmlns:q='v'>");
    ASSERT_NE(root, nullptr);
    for (const char *tag :
         {"<xml:a>", "<xmlns:a>", "<a xmlns:xml='u'>", "<a xmlns:xmlns='u'>", "<a xmlns:p=''>",
          "<a xmlns='http://www.w3.org/XML/1998/namespace'>",
          "<a xmlns:p='http://www.w3.org/2000/xmlns/'>", "<a xmlns='u v'>", "<a xmlns='u&amp;'>",
          "<a xmlns='\xC3\xA9'>", "<a xmlns='u\tv'>", "<gpx xmlns:p='u\nq=v'>"}) {
        EXPECT_EQ(child(root, tag), nullptr) << tag;
        EXPECT_EQ(child(nullptr, tag), nullptr) << tag;
    }
}

TEST_F(ScanElementTree, HasLimits) {
    const std::string uri(ElementTree::longestURI, 'u');
    EXPECT_NE(child(nullptr, "<a xmlns='" + uri + "'>"), nullptr);
    EXPECT_EQ(child(nullptr, "<a xmlns='" + uri + "u'>"), nullptr);
    Element *open = nullptr;
    for (std::size_t i = 0; i < xmlLimits::depth; ++i) {
        open = child(open, "<a>");
        ASSERT_NE(open, nullptr);
        EXPECT_EQ(open->depth, i + 1);
    }
    EXPECT_EQ(child(open, "<a>"), nullptr);
    EXPECT_EQ(child(open, "<a/>"), nullptr);
    open = nullptr;
    for (std::size_t i = 0; i < ElementTree::mostDeclarations; ++i) {
        open = child(open, "<a xmlns='u'>");
        ASSERT_NE(open, nullptr);
    }
    EXPECT_EQ(child(open, "<a xmlns='u'>"), nullptr);
    EXPECT_NE(child(open, "<a>"), nullptr);
}

TEST_F(ScanElementTree, IsFullAfterManyElementsOrMuchText) {
    Element *const root = child(nullptr, "<a>");
    for (std::size_t i = 1; i < ElementTree::mostElements; ++i) {
        EXPECT_FALSE(tree.isFull());
        EXPECT_NE(child(root, "<n" + std::to_string(i) + ">"), nullptr);
    }
    EXPECT_TRUE(tree.isFull());
    EXPECT_NE(child(root, "<onemore>"), nullptr) << "it still grows";
    tree.keepOnly(root);
    EXPECT_FALSE(tree.isFull());
    std::size_t count = 0;
    for (; !tree.isFull(); ++count) {
        const std::string name = std::string(490, 'n') + std::to_string(count);
        EXPECT_NE(child(root, "<" + name + ">"), nullptr);
    }
    EXPECT_LE(count, ElementTree::mostText / 490 + 1);
    tree.keepOnly(nullptr);
    EXPECT_FALSE(tree.isFull());
}

TEST_F(ScanElementTree, KeepsOneBranchAsItIs) {
    Element *const root = child(nullptr, "<gpx xmlns='u' xmlns:p='v'>");
    Element *const track = child(root, "<trk>");
    Element *const leaf = child(track, "<p:wpt>");
    for (int i = 0; i < 100; ++i) {
        static_cast<void>(child(i % 2 == 0 ? leaf : root, "<x" + std::to_string(i) + ">"));
    }
    tree.keepOnly(leaf);
    EXPECT_EQ(textOf(root), "gpx#0 {u}#2");
    EXPECT_EQ(textOf(track), "trk#1 {u}#2");
    EXPECT_EQ(textOf(leaf), "p:wpt#2 {v}#1");
    EXPECT_EQ(leaf->parent, track);
    EXPECT_EQ(child(nullptr, "<gpx xmlns='u' xmlns:p='v'>"), root);
    EXPECT_EQ(child(root, "<trk>"), track);
    EXPECT_EQ(child(track, "<p:wpt>"), leaf);
    EXPECT_EQ(textOf(child(leaf, "<p:x2>")), "p:x2#0 {v}#1") << "new ones come as before";
    EXPECT_EQ(textOf(child(leaf, "<x2>")), "x2#0 {u}#2");
    tree.keepOnly(root);
    EXPECT_EQ(child(nullptr, "<gpx xmlns='u' xmlns:p='v'>"), root);
    EXPECT_EQ(textOf(child(root, "<trk>")), "trk#1 {u}#2");
}

/// The longest branch there can be must leave room for others, or the tree would always be full.
TEST_F(ScanElementTree, TheLongestBranchIsNotFull) {
    const std::string name(QualifiedName::longest, 'n');
    const std::string prefix(QualifiedName::longest - 6, 'p');
    const std::string uri(ElementTree::longestURI, 'u');
    Element *open = nullptr;
    for (std::size_t i = 0; i < xmlLimits::depth; ++i) {
        std::string tag = "<" + name;
        if (i < ElementTree::mostDeclarations) {
            tag.append(" xmlns:").append(prefix).append("='").append(uri).append("'");
        }
        open = child(open, tag + ">");
        ASSERT_NE(open, nullptr) << i;
    }
    tree.keepOnly(open);
    EXPECT_FALSE(tree.isFull());
}

TEST(ScanVocabulary, NumbersNamesFromOne) {
    const Vocabulary vocabulary({.names = names, .namespaces = namespaces});
    EXPECT_EQ(vocabulary.name("trk"), 1);
    EXPECT_EQ(vocabulary.name("wpt"), 2);
    EXPECT_EQ(vocabulary.name("tr"), 0);
    EXPECT_EQ(vocabulary.name(""), 0);
    EXPECT_EQ(vocabulary.name("u"), 0);
    EXPECT_EQ(vocabulary.uri("u"), 2);
    EXPECT_EQ(vocabulary.uri("trk"), 0);
    const Vocabulary none(XMLVocabulary{});
    EXPECT_EQ(none.name("trk"), 0);
}

TEST_F(ScanElementTree, AsksForTheInterestInEachElement) {
    class Delegate final : public XMLParserDelegate {
      public:
        bool namesOnly = false;
        [[nodiscard]] bool wantsElementNamesOnly() const override { return namesOnly; }
        [[nodiscard]] XMLInterest interestIn(const XMLElement &element,
                                             std::span<const XMLElement> around) const override {
            places.append("/");
            for (const XMLElement &each : around) {
                places.append(each.localName).append("/");
            }
            places.append(element.localName).append(" ");
            return element.localName == "desc"  ? XMLInterest::all
                   : element.localName == "wpt" ? XMLInterest::tags
                                                : XMLInterest::nothing;
        }
        mutable std::string places;
    };
    for (const bool namesOnly : {false, true}) {
        Delegate delegate;
        delegate.namesOnly = namesOnly;
        ElementTree asking(vocabulary, delegate);
        StartTag tag;
        const auto child = [&](Element *parent, std::string_view name) {
            tag.name = {.whole = name, .prefix = {}, .local = name};
            return asking.child(parent, tag);
        };
        Element *const root = child(nullptr, "wpt");
        EXPECT_EQ(root->interest, XMLInterest::tags);
        EXPECT_FALSE(root->wantsText);
        Element *const wanted = child(root, "desc");
        EXPECT_EQ(wanted->interest, XMLInterest::all);
        EXPECT_EQ(wanted->wantsText, !namesOnly);
        EXPECT_EQ(child(wanted, "b")->interest, XMLInterest::all) << "as in all within";
        EXPECT_EQ(child(root, "b")->interest, XMLInterest::nothing);
        EXPECT_EQ(child(child(root, "b"), "desc")->interest, XMLInterest::all) << "asked again";
        EXPECT_EQ(delegate.places, "/wpt /wpt/desc /wpt/b /wpt/b/desc ");
    }
}

/// From place to place, up, down and sideways, and over what was forgotten.
TEST_F(ScanElementTree, AsksWithTheElementsAroundWhereverItWasBefore) {
    class Delegate final : public XMLParserDelegate {
      public:
        [[nodiscard]] XMLInterest interestIn(const XMLElement &element,
                                             std::span<const XMLElement> around) const override {
            place.clear();
            for (const XMLElement &each : around) {
                place.append(each.localName).append("/");
            }
            place.append(element.localName);
            return XMLInterest::nothing;
        }
        mutable std::string place;
    } delegate;
    ElementTree asking(vocabulary, delegate);
    StartTag tag;
    const auto add = [&](Element *parent, std::string_view name) {
        tag.name = {.whole = name, .prefix = {}, .local = name};
        return asking.child(parent, tag);
    };
    testing::Chance chance(7);
    std::vector<std::pair<Element *, std::string>> known = {{nullptr, ""}};
    for (int i = 0; i < 3000; ++i) {
        const auto [parent, path] = known[chance() % known.size()];
        const std::string name = std::string("n").append(std::to_string(i));
        Element *const added = add(parent, name);
        ASSERT_NE(added, nullptr);
        ASSERT_EQ(delegate.place, path + name);
        known.emplace_back(added, path + name + "/");
        if (chance() % 50 == 0) {
            const auto kept = known[chance() % known.size()];
            asking.keepOnly(kept.first);
            known = {{nullptr, ""}, kept};
        }
    }
}

} // namespace
} // namespace pelluvia::xml::scan
