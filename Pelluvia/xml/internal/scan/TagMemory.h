// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/xml/internal/scan/ElementTree.h>
#include <Pelluvia/xml/internal/scan/Phrase.h>
#include <Pelluvia/xml/internal/scan/StartTag.h>
#include <Pelluvia/xml/internal/scan/Vocabulary.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>

namespace pelluvia::xml::scan {

/// The tags that were read, each with those that have followed it: what comes next in a document
/// has mostly come before. Tags that keep following one another become one phrase.
///
/// Constant in size: when it is full, all is forgotten. A document that hardly repeats itself is
/// not learned over and over: each time that happens, twice as many tags go by before it begins
/// anew.
class TagMemory {
  public:
    /// With `startsOnly`, nothing is kept of what ends.
    explicit TagMemory(const Vocabulary &vocabulary, bool startsOnly = false)
        : vocabulary_(vocabulary), startsOnly_(startsOnly) {}

    /// The phrase at `at` if it is one that has followed `previous`; `end` is then the place behind
    /// it. Null if it is not.
    [[nodiscard]] Phrase *follow(const Phrase &previous, const char *at, const char *&end) noexcept;

    /// To be called when `next` was found directly behind `last`, without a text between, and
    /// `last` behind `before`: once that has happened some times in a row, they are one phrase,
    /// which can follow `before`.
    void meet(Phrase &before, Phrase &last, Phrase &next) {
        if (!last.canJoin) {
            return;
        }
        if (last.neighbour == &next && last.meetings >= meetingsToJoin) {
            join(before, last, next);
        } else {
            last.meetings = last.neighbour == &next ? last.meetings + 1 : 1;
            last.neighbour = &next;
        }
    }

    /// To be called for each tag that `follow` did not find: whether it is to be learned.
    [[nodiscard]] bool isLearning() noexcept;
    /// The tag that stands from `begin` (white space included) to the end of `tag`, starts
    /// `element` and follows `previous`. Null when it is too long to be remembered.
    Phrase *learnStart(Phrase *previous, const char *begin, Element *element, const StartTag &tag);
    /// The same for an end tag.
    Phrase *learnEnd(Phrase *previous, const char *begin, const char *end, Element *element);

    /// Forgets all phrases. The elements that they refer to may go only after that.
    void forget() noexcept;
    [[nodiscard]] bool isFull() const noexcept {
        return tags_.size() + joined_.size() >= mostPhrases;
    }

    static constexpr std::size_t mostPhrases = 600;
    static constexpr std::uint8_t meetingsToJoin = 4;

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
    Phrase *remember(Phrase *previous, Make make);
    [[nodiscard]] std::unique_ptr<Phrase> make(const char *begin, Element *element,
                                               const StartTag &tag) const;
    void addStart(Phrase &phrase, const Element *element, const StartTag &tag) const;
    void addEnd(Phrase &phrase, const Element *element) const;
    void join(Phrase &before, Phrase &last, Phrase &next);

    const Vocabulary &vocabulary_;
    const bool startsOnly_;
    std::unordered_map<Key, std::unique_ptr<Phrase>, Hash> tags_;
    /// Phrases by what they were joined of; null for what cannot be one.
    std::map<std::pair<const Phrase *, const Phrase *>, std::unique_ptr<Phrase>> joined_;
    Key key_;                  ///< scratch
    std::uint64_t hits_ = 0;   ///< phrases that `follow` has found since all was forgotten
    std::uint64_t misses_ = 0; ///< and tags that it has not
    std::uint64_t pause_ = 0;  ///< how many tags were not learned the last time
    std::uint64_t toPass_ = 0; ///< how many are still to pass
};

// What happens for every phrase of a document.

inline Phrase *TagMemory::follow(const Phrase &previous, const char *at,
                                 const char *&end) noexcept {
    for (Phrase *const each : previous.followers) {
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
