// SPDX-License-Identifier: MIT

#include <Pelluvia/gpximport/internal/GPXVocabulary.h>

#include <algorithm>

namespace pelluvia::gpxVocabulary {

namespace {

/// Sorted: the XML library asks for the interest in every element, of which many have no number.
constexpr auto sortedNames = [] {
    std::array<Entry<Name>, names.size()> sorted{};
    for (std::size_t i = 0; i < names.size(); ++i) {
        sorted[i] = {static_cast<Name>(i + 1), names[i]};
    }
    std::sort(sorted.begin(), sorted.end(),
              [](const auto &a, const auto &b) { return a.text < b.text; });
    return sorted;
}();

} // namespace

Name nameOf(std::string_view localName) noexcept {
    const auto found = std::lower_bound(
        sortedNames.begin(), sortedNames.end(), localName,
        [](const auto &entry, std::string_view text) { return entry.text < text; });
    return found != sortedNames.end() && found->text == localName ? found->number : Name::Other;
}

Namespace namespaceOf(std::string_view uri) noexcept {
    const auto found = std::find(namespaces.begin(), namespaces.end(), uri);
    return found != namespaces.end() ? static_cast<Namespace>(found - namespaces.begin() + 1)
                                     : Namespace::Other;
}

XMLElement numbered(const XMLElement &element) noexcept {
    XMLElement result = element;
    result.nameNumber = static_cast<std::uint16_t>(nameOf(element));
    result.namespaceNumber = static_cast<std::uint16_t>(namespaceOf(element));
    return result;
}

} // namespace pelluvia::gpxVocabulary
