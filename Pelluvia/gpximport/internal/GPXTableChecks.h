// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/gpximport/internal/GPXTable.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <variant>

/// \file
/// Holds, while it compiles, that `gpxTable` forgets nothing. Included where the table is used.

namespace pelluvia::gpxTable {

/// Can stand for a member of any type, so that members can be counted.
struct AnyMember {
    template <class Member>
    operator Member() const; // NOLINT(*-explicit-*): that is what it is for
};

/// The number of members of a struct that has nothing but members.
template <class Struct, class... Members>
[[nodiscard]] consteval std::size_t memberCount() {
    if constexpr (requires { Struct{Members()..., AnyMember()}; }) {
        return memberCount<Struct, Members..., AnyMember>();
    } else {
        return sizeof...(Members);
    }
}

template <class Range, class Matches>
[[nodiscard]] constexpr std::size_t countIf(const Range &range, Matches matches) {
    return static_cast<std::size_t>(std::count_if(range.begin(), range.end(), matches));
}

[[nodiscard]] consteval bool everyValueHasItsOwnRow() {
    return values.size() == memberCount<CollectedValues>() &&
           std::all_of(values.begin(), values.end(), [](const CollectedValue &value) {
               return countIf(values, [&](const CollectedValue &other) {
                          return other.field == value.field;
                      }) == 1;
           });
}
static_assert(everyValueHasItsOwnRow(), "a collected value has no row, or two");

[[nodiscard]] consteval bool everyValueIsFilledAndSent() {
    return std::all_of(values.begin(), values.end(), [](const CollectedValue &value) {
        return value.carriers != 0 &&
               std::any_of(elements.begin(), elements.end(), [&](const Element &element) {
                   return element.text == value.field ||
                          (element.attributeText != nullptr &&
                           Field(element.attributeText) == value.field);
               });
    });
}
static_assert(everyValueIsFilledAndSent(), "no element fills a value, or nothing carries it");

/// The flags that are cleared at an end, each once.
[[nodiscard]] consteval std::size_t clearedFlags() {
    std::size_t count = 0;
    for (std::size_t i = 0; i < elements.size(); ++i) {
        const auto flag = elements[i].flag.atEnd;
        const auto isSame = [flag](const Element &other) { return other.flag.atEnd == flag; };
        if (flag != nullptr &&
            std::none_of(elements.begin(), elements.begin() + static_cast<std::ptrdiff_t>(i),
                         isSame)) {
            ++count;
        }
    }
    return count;
}
static_assert(clearedFlags() == memberCount<ContextFlags>(),
              "a context flag would never be cleared");

[[nodiscard]] consteval bool everyElementHasOneRow() {
    return std::all_of(elements.begin(), elements.end(), [](const Element &element) {
        return countIf(elements, [&](const Element &other) {
                   return other.dialect == element.dialect && other.name == element.name;
               }) == 1;
    });
}
static_assert(everyElementHasOneRow(), "an element has two rows");

/// `Src` is only counted; the names from `Lat` on are those of attributes.
[[nodiscard]] consteval bool everyNameMeansSomething() {
    for (auto number = static_cast<std::uint16_t>(Name::Wpt);
         number < static_cast<std::uint16_t>(Name::Lat); ++number) {
        const auto name = static_cast<Name>(number);
        if (name != Name::Src && countIf(elements, [name](const Element &element) {
                                     return element.name == name;
                                 }) == 0) {
            return false;
        }
    }
    return true;
}
static_assert(everyNameMeansSomething(), "a name of the vocabulary has no row");

/// What is done at a start is undone at its end.
[[nodiscard]] consteval bool everyStartHasItsEnd() {
    for (std::size_t space = 0; space < namespaceCount; ++space) {
        for (std::size_t name = 0; name < nameCount; ++name) {
            if (atStart[space][name] != 0 && atStart[space][name] != atEnd[space][name]) {
                return false;
            }
        }
    }
    return true;
}
static_assert(everyStartHasItsEnd(), "an element means one thing at its start, another at its end");

} // namespace pelluvia::gpxTable
