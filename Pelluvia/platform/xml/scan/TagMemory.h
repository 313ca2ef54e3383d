#pragma once

#include <Pelluvia/platform/XMLParserDelegate.h>
#include <Pelluvia/platform/xml/scan/Bytes.h>
#include <Pelluvia/platform/xml/scan/ElementTree.h>
#include <Pelluvia/platform/xml/scan/StartTag.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace pelluvia::xml::scan {

/// A tag as it was once read, with the white space in front of it: where the same bytes come again
/// in the same place, they mean the same again, and nothing needs to be looked at but the values of
/// the attributes.
///
///     literal "\n   <trkpt lat=\"" value literal "\" lon=\"" value literal "\">"
struct KnownTag {
    enum class Kind : std::uint8_t { start, empty, end };

    /// A piece of the tag, from the last value or the beginning to the next value or the end. In a
    /// place of its own with room behind it, so that it can be compared in blocks.
    struct Literal {
        static constexpr std::size_t longest = 96;
        std::array<char, longest + padding> bytes{};
        std::size_t size = 0;
    };

    Literal literal; ///< the first
    Kind kind = Kind::start;
    std::uint8_t blankSize = 0;    ///< of the white space in front, if that is reported
    bool wantsText = false;        ///< text behind the tag is reported
    std::uint8_t closeSize = 0;    ///< of `>` or `/>`
    Element *element = nullptr;    ///< the one that starts or ends
    std::vector<Literal> literals; ///< behind each value
    /// The attributes; their values are of the last tag that matched.
    std::vector<XMLAttribute> attributes;
    std::string names; ///< what the attributes' names are views on

    /// The tags that have followed this one, the latest first; null for none.
    static constexpr std::size_t mostFollowers = 4;
    std::array<KnownTag *, mostFollowers> followers{};

    /// The place behind the tag, if the text at `at` is this tag; else null. Sets the values.
    [[nodiscard]] const char *match(const char *at) noexcept;
    /// The element that is open behind the tag; null behind the root.
    [[nodiscard]] Element *inside() const noexcept {
        return kind == Kind::start ? element : element->parent;
    }
};

/// The tags that were read, each with those that have followed it: what comes next in a document
/// has mostly come before.
///
/// Constant in size: when it is full, all is forgotten. A document that hardly repeats itself is
/// not learned over and over: each time that happens, twice as many tags go by before it begins
/// anew.
class TagMemory {
  public:
    explicit TagMemory(const Vocabulary &vocabulary) : vocabulary_(vocabulary) {}

    /// The tag at `at` if it is one that has followed `previous`; `end` is then the place behind
    /// it. Null if it is not.
    [[nodiscard]] KnownTag *follow(const KnownTag &previous, const char *at,
                                   const char *&end) noexcept;

    /// To be called for each tag that `follow` did not find: whether it is to be learned.
    [[nodiscard]] bool isLearning() noexcept;
    /// The tag that stands from `begin` (white space included) to the end of `tag`, starts
    /// `element` and follows `previous`. Null when it is too long to be remembered.
    KnownTag *learnStart(KnownTag *previous, const char *begin, Element *element,
                         const StartTag &tag);
    /// The same for an end tag.
    KnownTag *learnEnd(KnownTag *previous, const char *begin, const char *end, Element *element);

    /// Forgets all tags. The elements that they refer to may go only after that.
    void forget() noexcept;
    [[nodiscard]] bool isFull() const noexcept { return tags_.size() >= mostTags; }

    static constexpr std::size_t mostTags = 600;

  private:
    /// What a tag is: its text, with a zero for each value, in its place.
    struct Key {
        const Element *element = nullptr;
        std::string text;
        [[nodiscard]] bool operator==(const Key &) const = default;
    };
    /// Not noexcept, although it throws nothing: the table then keeps the hashes.
    struct Hash {
        [[nodiscard]] std::size_t operator()(const Key &key) const;
    };

    /// The tag with the scratch key, made by `make` if it is new, as a follower of `previous`.
    template <class Make>
    KnownTag *remember(KnownTag *previous, Make make);
    [[nodiscard]] std::unique_ptr<KnownTag> make(const char *begin, Element *element,
                                                 const StartTag &tag) const;

    const Vocabulary &vocabulary_;
    std::unordered_map<Key, std::unique_ptr<KnownTag>, Hash> tags_;
    Key key_;                  ///< scratch
    std::uint64_t hits_ = 0;   ///< tags that `follow` has found since all was forgotten
    std::uint64_t misses_ = 0; ///< and those it has not
    std::uint64_t pause_ = 0;  ///< how many tags were not learned the last time
    std::uint64_t toPass_ = 0; ///< how many are still to pass
};

// What happens for every tag of a document.

inline const char *KnownTag::match(const char *at) noexcept {
    if (!agree(at, literal.bytes.data(), literal.size)) {
        return nullptr;
    }
    at += literal.size;
    for (std::size_t i = 0; i < literals.size(); ++i) {
        // The next piece begins with the quote.
        const char *const end = findSpecial<plainValue>(at);
        const Literal &next = literals[i];
        if (!agree(end, next.bytes.data(), next.size)) {
            return nullptr;
        }
        attributes[i].value = std::string_view(at, static_cast<std::size_t>(end - at));
        at = end + next.size;
    }
    return at;
}

inline KnownTag *TagMemory::follow(const KnownTag &previous, const char *at,
                                   const char *&end) noexcept {
    for (KnownTag *const each : previous.followers) {
        if (each == nullptr) {
            return nullptr;
        }
        end = each->match(at);
        if (end != nullptr) {
            ++hits_;
            return each;
        }
    }
    return nullptr;
}

} // namespace pelluvia::xml::scan
