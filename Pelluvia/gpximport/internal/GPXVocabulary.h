// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/model/GPXNamespaces.h>
#include <Pelluvia/xml/XMLParserDelegate.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string_view>

/// \file
/// The names that mean something in GPX files. The parser looks each of them up once and from then
/// on delivers its number, so that handlers go by numbers and compare no texts.

namespace pelluvia::gpxVocabulary {

/// Local names of elements and attributes, under the number that the parser delivers.
enum class Name : std::uint16_t {
    Other, // any name that is not listed
    // GPX
    Wpt,
    Rte,
    Rtept,
    Trk,
    Trkseg,
    Trkpt,
    Name,
    Number,
    Sym,
    Desc,
    Cmt,
    Src,
    Author,
    Ele,
    Time,
    Link,
    Text,
    Url,
    Urlname,
    // extensions; the dialects share some names with each other and with GPX
    Temperature,
    GarminProximity,
    Atemp,
    Hr,
    Cad,
    Cache,
    Terrain,
    Difficulty,
    Type,
    Owner,
    EncodedHints,
    Logs,
    Travelbugs,
    Cadence,
    Proximity,
    Distance,
    Sensor,
    Temp,
    Course,
    Index,
    // attributes
    Lat,
    Lon,
    Href,
    Kind,
};

/// Namespaces, under the number that the parser delivers.
enum class Namespace : std::uint16_t {
    Other, // any namespace that is not listed, and none
    GarminExtensions,
    GarminTrackPoint,
    Geocache,
    GPXData,
    GPX10,
    GPX11,
};

/// A number with the text that it stands for.
template <class Number>
struct Entry {
    Number number;
    std::string_view text;
};

/// The texts of a table in the order of their numbers; a table that is out of order or leaves a
/// number out does not compile.
template <class Number, std::size_t size>
[[nodiscard]] consteval std::array<std::string_view, size>
textsInOrder(const Entry<Number> (&entries)[size]) {
    std::array<std::string_view, size> texts;
    for (std::size_t position = 0; position < size; ++position) {
        if (static_cast<std::size_t>(entries[position].number) != position + 1) {
            throw std::logic_error("the table is not in the order of its numbers");
        }
        texts[position] = entries[position].text;
    }
    return texts;
}

inline constexpr auto names = textsInOrder<Name>({
    {Name::Wpt, "wpt"},
    {Name::Rte, "rte"},
    {Name::Rtept, "rtept"},
    {Name::Trk, "trk"},
    {Name::Trkseg, "trkseg"},
    {Name::Trkpt, "trkpt"},
    {Name::Name, "name"},
    {Name::Number, "number"},
    {Name::Sym, "sym"},
    {Name::Desc, "desc"},
    {Name::Cmt, "cmt"},
    {Name::Src, "src"},
    {Name::Author, "author"},
    {Name::Ele, "ele"},
    {Name::Time, "time"},
    {Name::Link, "link"},
    {Name::Text, "text"},
    {Name::Url, "url"},
    {Name::Urlname, "urlname"},
    {Name::Temperature, "Temperature"},
    {Name::GarminProximity, "Proximity"},
    {Name::Atemp, "atemp"},
    {Name::Hr, "hr"},
    {Name::Cad, "cad"},
    {Name::Cache, "cache"},
    {Name::Terrain, "terrain"},
    {Name::Difficulty, "difficulty"},
    {Name::Type, "type"},
    {Name::Owner, "owner"},
    {Name::EncodedHints, "encoded_hints"},
    {Name::Logs, "logs"},
    {Name::Travelbugs, "travelbugs"},
    {Name::Cadence, "cadence"},
    {Name::Proximity, "proximity"},
    {Name::Distance, "distance"},
    {Name::Sensor, "sensor"},
    {Name::Temp, "temp"},
    {Name::Course, "course"},
    {Name::Index, "index"},
    {Name::Lat, "lat"},
    {Name::Lon, "lon"},
    {Name::Href, "href"},
    {Name::Kind, "kind"},
});
static_assert(names.size() == static_cast<std::size_t>(Name::Kind), "a name has no text");

inline constexpr auto namespaces = textsInOrder<Namespace>({
    {Namespace::GarminExtensions, PELLUVIA_GPXX_NAMESPACE},
    {Namespace::GarminTrackPoint, PELLUVIA_GPXTPX1_NAMESPACE},
    {Namespace::Geocache, PELLUVIA_GEOCACHE_NAMESPACE},
    {Namespace::GPXData, PELLUVIA_GPXDATA_NAMESPACE},
    {Namespace::GPX10, PELLUVIA_GPX10_NAMESPACE},
    {Namespace::GPX11, PELLUVIA_GPX11_NAMESPACE},
});
static_assert(namespaces.size() == static_cast<std::size_t>(Namespace::GPX11),
              "a namespace has no text");

/// What delegates that read GPX give to the parser.
inline constexpr XMLVocabulary vocabulary{names, namespaces};

/// The name or namespace of a text, or `Other`. For those that come without a number of this
/// vocabulary, from others than a parser that has it.
[[nodiscard]] Name nameOf(std::string_view localName) noexcept;
[[nodiscard]] Namespace namespaceOf(std::string_view uri) noexcept;

/// Whether both are known by their numbers, as those of almost all elements are that a parser tells
/// of to a delegate that asks for nothing else.
[[nodiscard]] constexpr bool isNumbered(const XMLElement &element) noexcept {
    return std::size_t{element.nameNumber} - 1 < names.size() &&
           std::size_t{element.namespaceNumber} - 1 < namespaces.size();
}
[[nodiscard]] inline Name nameOf(const XMLElement &element) noexcept {
    const bool isNumbered = std::size_t{element.nameNumber} - 1 < names.size();
    return isNumbered ? static_cast<Name>(element.nameNumber) : nameOf(element.localName);
}
[[nodiscard]] inline Namespace namespaceOf(const XMLElement &element) noexcept {
    const bool isNumbered = std::size_t{element.namespaceNumber} - 1 < namespaces.size();
    return isNumbered ? static_cast<Namespace>(element.namespaceNumber)
                      : namespaceOf(element.namespaceURI);
}
/// The same element with the numbers of this vocabulary; only those count from then on.
[[nodiscard]] XMLElement numbered(const XMLElement &element) noexcept;
/// The value of an attribute, or nothing.
[[nodiscard]] inline std::optional<std::string_view> attribute(const XMLAttributes &attributes,
                                                               Name name) noexcept {
    const auto number = static_cast<std::uint16_t>(name);
    const auto value = attributes.value(number);
    return value ? value : attributes.value(names[number - 1U]);
}

} // namespace pelluvia::gpxVocabulary
