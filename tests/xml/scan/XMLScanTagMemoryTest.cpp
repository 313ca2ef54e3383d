// SPDX-License-Identifier: MIT

#include <Pelluvia/xml/internal/scan/Bytes.h>
#include <Pelluvia/xml/internal/scan/ElementTree.h>
#include <Pelluvia/xml/internal/scan/TagMemory.h>

#include <array>
#include <cstddef>
#include <gtest/gtest.h>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace pelluvia::xml::scan {
namespace {

/// A text with zeros behind.
struct Text {
    explicit Text(std::string_view text) : bytes(text.begin(), text.end()) {
        bytes.resize(text.size() + padding);
    }
    [[nodiscard]] char *begin() { return bytes.data(); }
    [[nodiscard]] const char *end() const { return bytes.data() + bytes.size() - padding; }
    std::vector<char> bytes;
};

class ScanTagMemory : public ::testing::Test {
  protected:
    ScanTagMemory() { root = element(nullptr, "<gpx>"); }

    Element *element(Element *parent, std::string_view tagText) {
        Text text(tagText);
        StartTag tag;
        EXPECT_EQ(readStartTag(text.begin(), text.end(), tag), Look::complete);
        return tree.child(parent, tag);
    }
    /// From now on white space is no text.
    void wantNoText() {
        delegate.interest = XMLInterest::tags;
        root = element(nullptr, "<other>");
    }

    /// Learns a start tag, with the white space in front of it.
    Phrase *learn(Phrase *previous, std::string_view tagText, Element *parent) {
        Text text(tagText);
        StartTag tag;
        const std::size_t blanks = tagText.find('<');
        EXPECT_EQ(readStartTag(text.begin() + blanks, text.end(), tag), Look::complete);
        return memory.learnStart(previous, text.begin(), tree.child(parent, tag), tag);
    }
    Phrase *learnEnd(Phrase *previous, std::string_view tagText, Element *ended) {
        const Text text(tagText);
        return memory.learnEnd(previous, text.bytes.data(), text.end(), ended);
    }

    /// Follows a tag; the values of its attributes and what is behind it, or "none".
    std::string follow(const Phrase *previous, std::string_view input,
                       const Phrase *expected = nullptr) {
        Text text(input);
        const char *end = nullptr;
        const Phrase *const known = memory.follow(*previous, text.begin(), end);
        EXPECT_EQ(known, expected) << input;
        if (known == nullptr) {
            return "none";
        }
        std::string result;
        for (const XMLAttribute &each : known->attributes) {
            result.append(each.prefix).append(each.prefix.empty() ? "" : ":");
            result.append(each.localName).append("#").append(std::to_string(each.nameNumber));
            result.append("=").append(each.value).append(" ");
        }
        return result.append("|").append(end, text.end());
    }

    /// What a phrase means, with the places: ^ is its begin, else counted from its end.
    static std::string eventsOf(const Phrase *phrase) {
        std::string result;
        for (const Phrase::Event &event : phrase->events) {
            result.append(result.empty() ? "" : ", ").append(event.isStart ? "start " : "end ");
            result.append(event.element->name.localName).append(event.isFromBegin ? " ^" : " ");
            result.append(std::to_string(event.offset)).append(event.hasAttributes ? " @" : "");
        }
        return result;
    }

    static constexpr std::array<std::string_view, 2> names = {"lat", "lon"};
    Vocabulary vocabulary{{.names = names, .namespaces = {}}};
    struct Delegate final : XMLParserDelegate {
        XMLInterest interest = XMLInterest::all;
        [[nodiscard]] XMLInterest
        interestIn(const XMLElement & /*element*/,
                   std::span<const XMLElement> /*around*/) const override {
            return interest;
        }
    } delegate;
    ElementTree tree{vocabulary, delegate};
    TagMemory memory{vocabulary};
    Element *root = nullptr;
};

TEST_F(ScanTagMemory, FollowsATagWithOtherValues) {
    Phrase *const first = learn(nullptr, "<gpx>", nullptr);
    Phrase *const point = learn(first, "\n <pt lat=\"1\" p:lon='2' />", root);
    ASSERT_NE(point, nullptr);
    EXPECT_EQ(eventsOf(point), "start pt -2 @, end pt 0");
    EXPECT_EQ(point->blankSize, 2);
    EXPECT_EQ(point->inside, root);
    EXPECT_EQ(follow(first, "\n <pt lat=\"47.5\" p:lon='' />rest", point),
              "lat#1=47.5 p:lon#2= |rest");
    EXPECT_EQ(follow(first,
                     "\n <pt lat=\"a long value > that ] takes = several blocks\" p:lon='-' />",
                     point),
              "lat#1=a long value > that ] takes = several blocks p:lon#2=- |");
}

TEST_F(ScanTagMemory, FollowsNothingElse) {
    Phrase *const first = learn(nullptr, "<gpx>", nullptr);
    ASSERT_NE(learn(first, "\n <pt lat=\"1\" lon='2' />", root), nullptr);
    for (const std::string_view text :
         {"", "\n", "\n  <pt lat=\"1\" lon='2' />", "<pt lat=\"1\" lon='2' />",
          "\n <px lat=\"1\" lon='2' />", "\n <pt lat='1' lon='2' />",
          "\n <pt lat=\"1\" lon=\"2\" />", "\n <pt lat=\"1\" lon='2'/>",
          "\n <pt lat=\"1\" lon='2' >", "\n <pt lat=\"1\" lon='2", "\n <pt lat=\"1\" lon='2' /",
          "\n <pt lat=\"1'\" lon='2' />", "\n <pt lat=\"&lt;\" lon='2' />",
          "\n <pt lat=\"\xC3\xA9\" lon='2' />", "\n <pt lat=\"<\" lon='2' />",
          "\n <pt lat=\"\t\" lon='2' />", "\n <pt lat=\"\n\" lon='2' />",
          "\n <pt lat=\"\x01\" lon='2' />", "\n <pt lon=\"1\" lat='2' />"}) {
        EXPECT_EQ(follow(first, text), "none");
    }
}

TEST_F(ScanTagMemory, FollowsOnlyFromTheTagBefore) {
    Phrase *const first = learn(nullptr, "<gpx>", nullptr);
    Phrase *const other = learn(nullptr, "<trk>", root);
    Phrase *const end = learnEnd(first, "</gpx>", root);
    EXPECT_EQ(eventsOf(end), "end gpx 0");
    EXPECT_EQ(end->inside, nullptr);
    EXPECT_EQ(eventsOf(first), "start gpx -1");
    EXPECT_EQ(first->inside, root);
    EXPECT_EQ(follow(first, "</gpx>\n", end), "|\n");
    EXPECT_EQ(follow(other, "</gpx>\n"), "none");
}

TEST_F(ScanTagMemory, ComparesWhatIsLongerThanABlockToItsLastByte) {
    Phrase *const first = learn(nullptr, "<gpx>", nullptr);
    const std::string name(80, 'n');
    Phrase *const known = learn(first, "<" + name + ">", root);
    EXPECT_EQ(follow(first, "<" + name + ">", known), "|");
    for (std::size_t i = 1; i <= name.size(); ++i) {
        std::string text = "<" + name + ">";
        text[i] = 'm';
        EXPECT_EQ(follow(first, text), "none") << i;
    }
}

TEST_F(ScanTagMemory, DoesNotLearnWhatIsTooLong) {
    constexpr std::size_t longest = Phrase::Literal::longest;
    EXPECT_NE(learn(nullptr, "<" + std::string(longest - 2, 'n') + ">", root), nullptr);
    EXPECT_EQ(learn(nullptr, "<" + std::string(longest - 1, 'n') + ">", root), nullptr);
    EXPECT_EQ(learn(nullptr, "<a " + std::string(longest, 'n') + "='1'>", root), nullptr);
    EXPECT_EQ(learn(nullptr, "<a b='1' " + std::string(longest, 'n') + "='1'>", root), nullptr);
    EXPECT_EQ(learn(nullptr, "<a b='1'" + std::string(longest, ' ') + ">", root), nullptr);
    EXPECT_EQ(learn(nullptr, std::string(longest, ' ') + "<a>", root), nullptr);
    EXPECT_NE(learn(nullptr, "<a b='" + std::string(5000, 'v') + "'>", root), nullptr)
        << "values may be of any length";
    EXPECT_EQ(learnEnd(nullptr, "</a" + std::string(longest, ' ') + ">", root), nullptr);
    std::string attributes;
    for (int i = 0; i < 12; ++i) {
        attributes.append(" a").append(std::to_string(i)).append("='v'");
    }
    Phrase *const known = learn(nullptr, "<a" + attributes + ">", root);
    ASSERT_NE(known, nullptr);
    EXPECT_EQ(known->attributes.size(), 12U);
    EXPECT_EQ(known->attributes[11].localName, "a11");
    EXPECT_EQ(learn(nullptr, "<a" + attributes + " b=''>", root), nullptr);
}

TEST_F(ScanTagMemory, RemembersATagOnce) {
    Phrase *const first = learn(nullptr, "<gpx>", nullptr);
    Phrase *const one = learn(first, "<a b='1'/>", root);
    EXPECT_EQ(learn(one, "<a b='2'/>", root), one);
    EXPECT_EQ(follow(one, "<a b='3'/>", one), "b#0=3 |");
    EXPECT_NE(learn(first, "<a b=\"1\"/>", root), one);
    EXPECT_NE(learn(first, " <a b='1'/>", root), one);
    EXPECT_NE(learn(first, "<a b='1'/>", element(root, "<c>")), one) << "another place";
}

TEST_F(ScanTagMemory, KeepsTheLatestFollowers) {
    Phrase *const first = learn(nullptr, "<gpx>", nullptr);
    std::vector<Phrase *> tags;
    constexpr std::size_t count = 2 * Phrase::mostFollowers;
    const auto textOf = [](std::size_t i) { return "<n" + std::to_string(i) + "/>"; };
    for (std::size_t i = 0; i < count; ++i) {
        tags.push_back(learn(first, textOf(i), root));
        EXPECT_EQ(first->followers[0], tags.back()) << "the latest is the first";
    }
    for (std::size_t i = 0; i < count; ++i) {
        const bool isKept = i >= count - Phrase::mostFollowers;
        EXPECT_EQ(follow(first, textOf(i), isKept ? tags[i] : nullptr), isKept ? "|" : "none");
    }
    // One that comes again goes to the front, and no other is lost for it.
    EXPECT_EQ(learn(first, textOf(count - 3), root), tags[count - 3]);
    EXPECT_EQ(first->followers[0], tags[count - 3]);
    for (std::size_t i = count - Phrase::mostFollowers; i < count; ++i) {
        EXPECT_EQ(follow(first, textOf(i), tags[i]), "|");
    }
}

TEST_F(ScanTagMemory, JoinsWhatMeetsOftenInARow) {
    wantNoText();
    Phrase *const first = learn(nullptr, "<gpx>", nullptr);
    Phrase *const open = learn(first, " <a>", root);
    Phrase *const point = learn(open, "\n<b p='1'  q=\"2\"/>", element(root, "<a>"));
    Phrase *const close = learnEnd(point, " </a>", element(root, "<a>"));
    const std::string text = " <a>\n<b p='5'  q=\"\"/> </a>";
    for (int i = 0; i < TagMemory::meetingsToJoin; ++i) {
        memory.meet(*first, *open, *point);
        EXPECT_EQ(follow(first, text, open), "|\n<b p='5'  q=\"\"/> </a>");
    }
    memory.meet(*first, *open, *point);
    Phrase *const two = first->followers[0];
    EXPECT_EQ(follow(first, text, two), "p#0=5 q#0= | </a>");
    EXPECT_EQ(follow(first, " <a><c/>", open), "|<c/>") << "alone, it is known as before";
    EXPECT_EQ(eventsOf(two), "start a ^3, start b -2 @, end b 0");
    EXPECT_EQ(two->inside, element(root, "<a>"));
    EXPECT_EQ(two->tags, 3U);

    for (int i = 0; i <= TagMemory::meetingsToJoin; ++i) {
        memory.meet(*first, *two, *close);
    }
    Phrase *const three = first->followers[0];
    EXPECT_EQ(follow(first, text, three), "p#0=5 q#0= |");
    EXPECT_EQ(eventsOf(three), "start a ^3, start b -7 @, end b -5, end a 0");
    EXPECT_EQ(three->inside, root);
    EXPECT_EQ(follow(first, " <a>\n<b p='5'  q=\"\"/> </b>", two), "p#0=5 q#0= | </b>");

    Phrase *const front = learnEnd(first, "</cd>", element(root, "<cd>"));
    for (int i = 0; i <= TagMemory::meetingsToJoin; ++i) {
        memory.meet(*first, *front, *three);
    }
    EXPECT_EQ(eventsOf(first->followers[0]),
              "end cd ^5, start a ^8, start b -7 @, end b -5, end a 0");
}

TEST_F(ScanTagMemory, JoinsTwoWithoutValues) {
    wantNoText();
    Phrase *const first = learn(nullptr, "<gpx>", nullptr);
    Phrase *const open = learn(first, "<a>", root);
    Phrase *const close = learnEnd(open, "</a>", element(root, "<a>"));
    for (int i = 0; i <= TagMemory::meetingsToJoin; ++i) {
        memory.meet(*first, *open, *close);
    }
    EXPECT_EQ(eventsOf(first->followers[0]), "start a -5, end a 0");
}

TEST_F(ScanTagMemory, DoesNotJoinWhatMeetsOnlyNowAndThen) {
    wantNoText();
    Phrase *const first = learn(nullptr, "<gpx>", nullptr);
    Phrase *const open = learn(first, "<a>", root);
    Phrase *const one = learn(open, "<b/>", element(root, "<a>"));
    Phrase *const other = learn(open, "<c/>", element(root, "<a>"));
    for (int i = 0; i < 20; ++i) {
        memory.meet(*first, *open, *one);
        memory.meet(*first, *open, *one);
        memory.meet(*first, *open, *other);
    }
    EXPECT_EQ(first->followers[0], open);
}

TEST_F(ScanTagMemory, JoinsNoMoreWhenItIsFull) {
    wantNoText();
    Phrase *const first = learn(nullptr, "<gpx>", nullptr);
    constexpr std::size_t count = 30; // each with each are more than there is room for
    std::vector<Phrase *> tags;
    for (std::size_t i = 0; i < count; ++i) {
        tags.push_back(learn(nullptr, "<n" + std::to_string(i) + "/>", root));
    }
    const auto meet = [&](Phrase *last, Phrase *next) {
        for (int i = 0; i <= TagMemory::meetingsToJoin; ++i) {
            memory.meet(*first, *last, *next);
        }
    };
    std::size_t joined = 0;
    for (Phrase *const last : tags) {
        for (Phrase *const next : tags) {
            const bool wasFull = memory.isFull();
            Phrase *const before = first->followers[0];
            meet(last, next);
            EXPECT_EQ(first->followers[0] != before, !wasFull);
            joined += wasFull ? 0 : 1;
        }
    }
    EXPECT_EQ(joined, TagMemory::mostPhrases - count - 1);
}

TEST_F(ScanTagMemory, DoesNotJoinTwoTagsWithValuesNorWhatIsTooLong) {
    wantNoText();
    Phrase *const first = learn(nullptr, "<gpx>", nullptr);
    const auto meet = [&](Phrase *last, Phrase *next) {
        for (int i = 0; i < 20; ++i) {
            memory.meet(*first, *last, *next);
        }
    };
    Phrase *const one = learn(first, "<a p='1'>", root);
    Phrase *const other = learn(one, "<b q='1'/>", element(root, "<a>"));
    meet(one, other);
    EXPECT_EQ(first->followers[0], one);

    const std::string half(Phrase::Literal::longest / 2 - 3, 'n');
    Phrase *const start = learn(first, "<" + half + ">", root);
    meet(start, learn(start, "<" + half + "mm/>", element(root, "<" + half + ">")));
    EXPECT_EQ(first->followers[0], start);
    Phrase *const again = learn(first, "<m" + half + ">", root);
    meet(again, learn(again, "<" + half + "/>", element(root, "<m" + half + ">")));
    EXPECT_NE(first->followers[0], again) << "as long as can be";
}

TEST_F(ScanTagMemory, DoesNotJoinWhereWhiteSpaceIsText) {
    Phrase *const first = learn(nullptr, "<gpx>", nullptr);
    Phrase *const open = learn(first, "<a>", root);
    Phrase *const blank = learn(open, " <b/>", element(root, "<a>"));
    for (int i = 0; i < 20; ++i) {
        memory.meet(*first, *open, *blank);
    }
    EXPECT_EQ(first->followers[0], open) << "the text has a place of its own";
}

TEST_F(ScanTagMemory, KeepsNoEndsForADelegateThatWantsStartsOnly) {
    TagMemory starts(vocabulary, true);
    Text text("<a p='1'/>");
    StartTag tag;
    ASSERT_EQ(readStartTag(text.begin(), text.end(), tag), Look::complete);
    const Phrase *const known =
        starts.learnStart(nullptr, text.begin(), tree.child(root, tag), tag);
    EXPECT_EQ(eventsOf(known), "start a -2") << "nor attributes";
    EXPECT_EQ(known->tags, 1U);
    const Text end("</gpx>");
    EXPECT_EQ(eventsOf(starts.learnEnd(nullptr, end.bytes.data(), end.end(), root)), "");
}

TEST_F(ScanTagMemory, IsFullAfterManyTagsAndForgetsThem) {
    Phrase *const first = learn(nullptr, "<gpx>", nullptr);
    ASSERT_NE(first, nullptr);
    std::size_t count = 1;
    for (; !memory.isFull(); ++count) {
        ASSERT_NE(learn(first, "<n" + std::to_string(count) + "/>", root), nullptr);
    }
    EXPECT_EQ(count, TagMemory::mostPhrases);
    memory.forget();
    EXPECT_FALSE(memory.isFull());
    Phrase *const again = learn(nullptr, "<gpx>", nullptr);
    EXPECT_EQ(again->followers[0], nullptr);
    EXPECT_EQ(follow(again, "<n5/>"), "none");
}

TEST_F(ScanTagMemory, PausesTwiceAsLongEachTimeItWasOfNoUse) {
    std::size_t last = 0;
    for (int i = 0; i < 5; ++i) {
        EXPECT_TRUE(memory.isLearning());
        memory.forget();
        std::size_t pause = 0;
        while (!memory.isLearning()) {
            ++pause;
        }
        EXPECT_GT(pause, 100U);
        if (last != 0) {
            EXPECT_EQ(pause, 2 * last);
        }
        last = pause;
    }
}

TEST_F(ScanTagMemory, DoesNotPauseLongerForWhatIsForgottenInAPause) {
    const auto pause = [&] {
        std::size_t length = 0;
        while (!memory.isLearning()) {
            ++length;
        }
        return length;
    };
    EXPECT_TRUE(memory.isLearning());
    memory.forget();
    EXPECT_FALSE(memory.isLearning());
    memory.forget();
    memory.forget();
    const std::size_t first = pause() + 1;
    memory.forget();
    EXPECT_EQ(pause(), 2 * first);
}

TEST_F(ScanTagMemory, DoesNotPauseWhenItWasOfUse) {
    for (int i = 0; i < 5; ++i) {
        EXPECT_TRUE(memory.isLearning());
        Phrase *const first = learn(nullptr, "<gpx>", nullptr);
        Phrase *const known = learn(first, "<a/>", root);
        for (int hit = 0; hit < 100; ++hit) {
            EXPECT_EQ(follow(first, "<a/>", known), "|");
        }
        memory.forget();
    }
    EXPECT_TRUE(memory.isLearning());
}

} // namespace
} // namespace pelluvia::xml::scan
