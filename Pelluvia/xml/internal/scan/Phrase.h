// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/xml/XMLParserDelegate.h>
#include <Pelluvia/xml/internal/scan/Bytes.h>
#include <Pelluvia/xml/internal/scan/ElementTree.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace pelluvia::xml::scan {

/// A tag as it was once read, or several that followed one another, with the white space in front
/// of each: where the same bytes come again in the same place, they mean the same again, and
/// nothing needs to be looked at but the values of attributes.
///
///     literal "</time>\n   </trkpt>\n   <trkpt lat=\"" value literal "\" lon=\"" value literal
///     "\">"
///
/// At most one of the tags has attributes.
struct Phrase {
    /// A piece of the phrase, from the last value or the beginning to the next value or the end. In
    /// a place of its own with room behind it, so that it can be compared in blocks.
    struct Literal {
        static constexpr std::size_t longest = 192;
        std::array<char, longest + padding> bytes{};
        std::size_t size = 0;
    };

    /// What the delegate is told of one of the tags; of an empty-element tag two of these.
    struct Event {
        const Element *element = nullptr;
        bool isStart = true; ///< or else the element ends
        bool hasAttributes = false;
        bool hasDeclarations = false;
        /// The event's place, counted in bytes from the phrase's begin or, what is behind the
        /// values, backwards from its end.
        bool isFromBegin = false;
        std::int32_t offset = 0;
    };

    Literal literal;               ///< the first
    std::vector<Literal> literals; ///< behind each value
    std::vector<Event> events;     ///< those that the delegate is interested in
    std::uint32_t tags = 0;        ///< starts and ends, all that there are
    bool hasStart = false;         ///< one of the tags starts an element
    /// Of the tag that has any; the values are those of the last text that matched.
    std::vector<XMLAttribute> attributes;
    std::string names;         ///< of a single tag: what the attributes' names are views on
    Element *inside = nullptr; ///< the element that is open behind the phrase; null behind the root
    bool wantsText = false;    ///< text behind it is reported
    std::uint8_t blankSize = 0; ///< of the white space in front, if that is reported

    /// The phrases that have followed this one, with or without a text between; null for none.
    static constexpr std::size_t mostFollowers = 4;
    std::array<Phrase *, mostFollowers> followers{};

    /// The one that came last without a text between, and how many times in a row it did.
    Phrase *neighbour = nullptr;
    std::uint8_t meetings = 0;
    bool canJoin = true; ///< with what comes next

    /// The place behind the phrase, if that is what stands at `at`; else null. Sets the values.
    [[nodiscard]] const char *match(const char *at) noexcept;

    /// Where an event of the phrase happens, which stands from `begin` to `end`.
    [[nodiscard]] static const char *placeOf(const Event &event, const char *begin,
                                             const char *end) noexcept {
        return (event.isFromBegin ? begin : end) + event.offset;
    }
    [[nodiscard]] static std::span<const Declaration> declarationsOf(const Event &event) noexcept {
        return event.hasDeclarations ? std::span<const Declaration>(event.element->declarations)
                                     : std::span<const Declaration>();
    }
    [[nodiscard]] std::span<const XMLAttribute> attributesOf(const Event &event) const noexcept {
        return event.hasAttributes ? std::span<const XMLAttribute>(attributes)
                                   : std::span<const XMLAttribute>();
    }
};

inline const char *Phrase::match(const char *at) noexcept {
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

} // namespace pelluvia::xml::scan
