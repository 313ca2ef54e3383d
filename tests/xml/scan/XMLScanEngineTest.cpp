// SPDX-License-Identifier: MIT

#include <Pelluvia/xml/internal/scan/ElementTree.h>
#include <Pelluvia/xml/internal/scan/ScanEngine.h>
#include <Pelluvia/xml/internal/scan/TagMemory.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <malloc.h>
#include <memory>
#include <string>
#include <string_view>
#include <tests/support/Damage.h>
#include <tests/support/XMLCase.h>
#include <tests/support/XMLEngineComparison.h>
#include <tests/support/XMLSources.h>

/// \file
/// Whole documents that are well-formed: what the scanner remembers must not show.

namespace pelluvia::xml::scan {
namespace {

using testing::expectVerdict;
using testing::XMLEngineComparison;
constexpr auto scanned = testing::XMLVerdict::scanned;

TEST(ScanEngine, TellsTheSameTagInOtherPlacesApart) {
    const std::string point = "\n  <p:pt lat='1' p:lon='2'/>\n  <b>x</b>";
    std::string document = "<r>";
    for (int i = 0; i < 20; ++i) {
        for (const char *open : {"<a>", "<a xmlns='u'>", "<a xmlns:p='u'>", "<a xmlns:p='v'>",
                                 "<b>", "<a xmlns='v' xmlns:p='u'>", "<b xmlns='u'>"}) {
            document.append(open).append(point).append("</").append(1, open[1]).append(">");
        }
    }
    expectVerdict(document + "</r>", scanned);
}

TEST(ScanEngine, TellsTagsApartThatFollowTheSameTag) {
    std::string document = "<r>";
    for (int i = 0; i < 300; ++i) {
        // Seven kinds in a changing order: more than a tag's followers.
        const int kind = (i * i + i / 7) % 7;
        document.append("<t").append(std::to_string(kind)).append(" v='");
        document.append(std::to_string(i)).append(kind % 2 == 0 ? "'/>\n" : "'>x</t");
        document.append(kind % 2 == 0 ? "" : std::to_string(kind) + ">\n");
    }
    expectVerdict(document + "</r>", scanned);
}

TEST(ScanEngine, StopsUsingARememberedTagWhereItsValueIsUnusual) {
    std::string document = "<r>";
    for (const char *value : {"1", "2", "&lt;", "3", "\xC3\xA9",    "4", "\t", "5",  "",    "6",
                              "'", "7", "x\ny", "8", "&#65;&#x42;", "9", ">",  "10", "]]>", "11"}) {
        document.append("\n<a b=\"").append(value).append("\" c='0'/>");
    }
    expectVerdict(document + "</r>", scanned);
}

TEST(ScanEngine, ForgetsTagsAndElementsWithoutLosingItsPlace) {
    std::string document;
    for (int depth = 0; depth < 20; ++depth) {
        document.append("<o").append(std::to_string(depth)).append(" xmlns:p='u");
        document.append(std::to_string(depth)).append("'>");
    }
    const std::size_t count = 3 * ElementTree::mostElements / 2; // of two elements each
    for (std::size_t i = 0; i < count; ++i) {
        const std::string name = "p:n" + std::to_string(i);
        document.append("<").append(name).append(" a='1'><q/><q/></").append(name).append(">");
        if (i == count / 2) {
            document.append("</o19><o19 xmlns:p='v'>");
        }
    }
    for (int depth = 19; depth >= 0; --depth) {
        document.append("</o").append(std::to_string(depth)).append(">");
    }
    expectVerdict(document, scanned);
}

TEST(ScanEngine, LearnsAgainAfterAPause) {
    std::string document = "<r>";
    for (int round = 0; round < 3; ++round) {
        for (std::size_t i = 0; i < 2 * TagMemory::mostPhrases; ++i) {
            document.append("<n").append(std::to_string(i)).append("/>");
        }
        for (std::size_t i = 0; i < 6000; ++i) {
            document.append("<a v='").append(std::to_string(i)).append("'><b/></a>\n");
        }
    }
    const std::string text = document + "</r>";
    for (const std::size_t windowSize : {std::size_t{100}, ScanEngine::usualWindowSize}) {
        const XMLEngineComparison comparison(text, windowSize);
        EXPECT_EQ(comparison.difference(), "");
        EXPECT_TRUE(comparison.isScanned());
    }
}

TEST(ScanEngine, ForgetsLongNamesBeforeTheyAreMany) {
    std::string document = "<r>";
    for (int i = 0; i < 3000; ++i) {
        document.append("<").append(490, 'n').append(std::to_string(i)).append("/>");
    }
    const XMLEngineComparison comparison(document + "</r>");
    EXPECT_EQ(comparison.difference(), "");
    EXPECT_TRUE(comparison.isScanned());
}

/// Notes the most memory that was in use at any event.
class MemoryWatch : public XMLParserDelegate {
  public:
    std::size_t most = 0;
    void didStartElement(XMLParser & /*parser*/, const XMLElement & /*element*/,
                         const XMLAttributes & /*attributes*/) override {
        if (++elements_ % 64 == 0) {
            most = std::max(most, ::mallinfo2().uordblks);
        }
    }

  private:
    std::size_t elements_ = 0;
};

TEST(ScanEngine, RemembersNoMoreHoweverMuchThereIs) {
    const auto memoryFor = [](std::string_view name, std::string_view attribute) {
        // Nothing is ever seen twice where the number is. With less space between, it is refused.
        const std::string blanks(200, ' ');
        std::string document = "<r>";
        for (std::size_t i = 0; i < 30'000; ++i) {
            const std::string number = std::to_string(i);
            document.append("<a").append(name.empty() ? number : name).append(" b");
            document.append(attribute.empty() ? number : attribute).append("='1'/>").append(blanks);
        }
        testing::TextSource source(document + "</r>");
        const std::size_t before = ::mallinfo2().uordblks;
        XMLParser parser(std::make_unique<testing::TextSource>(""));
        MemoryWatch watch;
        ScanEngine engine(parser, source, &watch);
        EXPECT_EQ(engine.run(), ScanEngine::Outcome::wellFormed);
        return watch.most > before ? watch.most - before : 0;
    };
    constexpr std::size_t megabyte = 1'000'000;
    EXPECT_LT(memoryFor("", "x"), 4 * megabyte);
    EXPECT_LT(memoryFor("x", ""), 4 * megabyte);
    EXPECT_LT(memoryFor("", ""), 4 * megabyte);
    EXPECT_LT(memoryFor("x", "x"), megabyte);
}

/// The library holds some thousand bytes at a time, and does not read all markup alike wherever it
/// is cut: what is long in it must be so that the scanner need not know.
TEST(ScanEngine, ReadsLongMarkupWhereverTheLibraryCutsIt) {
    const std::string names(499, 'n');
    const std::string blanks(600, ' ');
    const std::string markups[] = {"<" + names + ">x</" + names + ">",
                                   "<a " + names + "='1'/>",
                                   "<?" + names + "?>",
                                   "<?" + names + " ?>",
                                   "<?p" + blanks + "?>",
                                   "<!--" + blanks + "-->",
                                   "<a" + blanks + "/>",
                                   "<a></a" + blanks + ">",
                                   "<a b='" + blanks + "'/>",
                                   "<![CDATA[" + blanks + "]]>",
                                   "<a b" + blanks + "=" + blanks + "'1'/>"};
    for (const std::string &markup : markups) {
        for (std::size_t size = 3300; size < 4100; ++size) {
            std::string document = "<r>";
            while (document.size() + 100 < size) {
                document.append("<i>").append(90, 'x').append("</i>\n");
            }
            document.append(size - document.size(), ' ').append(markup).append("</r>");
            const XMLEngineComparison comparison(document);
            ASSERT_EQ(comparison.difference(), "") << document;
        }
    }
}

/// Makes well-formed documents that repeat themselves, more or less.
class Writer {
  public:
    explicit Writer(std::uint64_t seed) : chance_(seed) {}

    [[nodiscard]] std::string document() {
        text_.clear();
        for (auto &each : layouts_) {
            each = chance_.below(9) == 0 ? "\n\t" : chance_.below(2) == 0 ? "\n  " : "";
        }
        element(0);
        return text_;
    }

  private:
    template <std::size_t size>
    [[nodiscard]] std::string_view oneOf(const std::array<std::string_view, size> &list) {
        return list[chance_.below(size)];
    }

    void element(std::size_t depth) {
        constexpr std::array<std::string_view, 8> names = {"a",   "b",   "trk",   "lat",
                                                           "p:a", "q:b", "p:trk", "c-1.d"};
        const std::string_view name = oneOf(names);
        text_.append("<").append(name);
        attributes();
        if (chance_.below(4) == 0) {
            text_.append("/>");
            return;
        }
        text_.append(">");
        const std::size_t children = depth < 6 ? chance_.below(depth < 2 ? 20 : 4) : 0;
        for (std::size_t i = 0; i < children; ++i) {
            text_.append(layouts_[depth % layouts_.size()]);
            piece();
            element(depth + 1);
        }
        piece();
        text_.append("</").append(name).append(chance_.below(20) == 0 ? " >" : ">");
    }

    void attributes() {
        constexpr std::array<std::string_view, 8> declarations = {
            "", "", "", "", " xmlns='u'", " xmlns:p='u'", " xmlns:q=\"v\"", " xmlns=''"};
        constexpr std::array<std::string_view, 6> names = {"",        " lat=\"", " lat='",
                                                           " lon=\"", " p:b=\"", " lat\n=\""};
        constexpr std::array<std::string_view, 9> values = {
            "1",        "47.5", "",   "a longer value than sixteen bytes", "&amp;", "&#xe9;",
            "\xC3\xA9", "\t",   "]]>"};
        text_.append(oneOf(declarations));
        const std::string_view name = oneOf(names);
        if (!name.empty()) {
            text_.append(name).append(oneOf(values)).append(1, name.back());
        }
    }

    void piece() {
        constexpr std::array<std::string_view, 16> pieces = {
            "",
            "",
            "",
            "",
            "text",
            "longer text than sixteen bytes, much longer",
            "&lt;",
            "]",
            "]]",
            "\r\n",
            "\xE6\x9D\xB1",
            "<!-- - c -->",
            "<?p q ?>",
            "<![CDATA[<d>]]]]>",
            "<![CDATA[]]>",
            "&#x1F600;"};
        text_.append(oneOf(pieces));
    }

    testing::Damage chance_;
    std::array<std::string_view, 4> layouts_;
    std::string text_;
};

TEST(ScanEngine, ReadsAnyWellFormedDocumentAsTheLibraryDoes) {
    Writer writer(3);
    testing::Damage chance(4);
    for (std::size_t i = 0; i < testing::damagedDocuments / 20; ++i) {
        const std::string document = writer.document();
        const XMLEngineComparison whole(document);
        ASSERT_EQ(whole.difference(), "") << document;
        ASSERT_TRUE(whole.isScanned()) << document;
        const std::size_t windowSize = 64 + chance.below(200);
        const XMLEngineComparison small(document, windowSize);
        ASSERT_EQ(small.difference(), "") << "window: " << windowSize << "\n" << document;
    }
}

TEST(ScanEngine, ReadsDamagedOnesAsTheLibraryDoes) {
    Writer writer(5);
    testing::Damage damage(6);
    for (std::size_t i = 0; i < testing::damagedDocuments / 4; ++i) {
        const std::string document = damage.apply(damage.cut(writer.document(), 3000));
        const XMLEngineComparison comparison(document);
        ASSERT_EQ(comparison.difference(), "") << document;
    }
}

TEST(ScanEngine, KnowsNoPlaceInWhatCanBeReadOnlyOnce) {
    class Once final : public Source {
      public:
        [[nodiscard]] ssize_t readSome(char *to, std::size_t size) override {
            return source_.read(to, size);
        }

      private:
        testing::TextSource source_{"<a/>"};
    };
    Once source;
    XMLParser parser(std::make_unique<testing::TextSource>(""));
    ScanEngine engine(parser, source, nullptr);
    EXPECT_EQ(engine.run(), ScanEngine::Outcome::wellFormed);
    EXPECT_EQ(engine.reported().tags, 1U);
    EXPECT_EQ(engine.position().line, 0);
    EXPECT_EQ(engine.position().column, 0);
}

} // namespace
} // namespace pelluvia::xml::scan
