#pragma once

#include <Pelluvia/gpximport/internal/GPXVocabulary.h>

#include <array>
#include <cstddef>

namespace pelluvia {

/// Whether the importer looks at the text of such an element at its end. What stands outside of all
/// of these (most of it white space between tags) need not be collected.
[[nodiscard]] constexpr bool usesText(gpxVocabulary::Namespace space,
                                      gpxVocabulary::Name name) noexcept {
    using gpxVocabulary::Name;
    using gpxVocabulary::Namespace;
    switch (space) {
    case Namespace::Geocache:
        return name == Name::Name || name == Name::Terrain || name == Name::Difficulty ||
               name == Name::Type || name == Name::Owner || name == Name::EncodedHints;
    case Namespace::GPXData:
        return name == Name::Cadence || name == Name::Hr || name == Name::Proximity ||
               name == Name::Distance || name == Name::Temp || name == Name::Index;
    case Namespace::GarminExtensions:
        if (name == Name::Temperature || name == Name::GarminProximity) {
            return true;
        }
        break;
    case Namespace::GarminTrackPoint:
        if (name == Name::Atemp || name == Name::Hr || name == Name::Cad) {
            return true;
        }
        break;
    default:
        break;
    }
    // As at their end: GPX names in any other namespace and in none.
    return name == Name::Name || name == Name::Number || name == Name::Sym || name == Name::Desc ||
           name == Name::Cmt || name == Name::Ele || name == Name::Time || name == Name::Text ||
           name == Name::Url || name == Name::Urlname;
}

/// The same as a table, for every element that the parser reports.
[[nodiscard]] inline bool usesText(const XMLElement &element) noexcept {
    using namespace gpxVocabulary;
    static constexpr auto table = [] {
        std::array<std::array<bool, names.size() + 1>, namespaces.size() + 1> uses{};
        for (std::size_t space = 0; space < uses.size(); ++space) {
            for (std::size_t name = 0; name < uses[space].size(); ++name) {
                uses[space][name] =
                    usesText(static_cast<Namespace>(space), static_cast<Name>(name));
            }
        }
        return uses;
    }();
    return table[element.namespaceNumber][element.nameNumber];
}

} // namespace pelluvia
