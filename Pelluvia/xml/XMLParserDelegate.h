// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/values/Error.h>
#include <Pelluvia/values/Export.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace pelluvia {

class XMLParser;

/// The names that a delegate wants to recognise. The parser looks each name of the document up once
/// and from then on delivers its number: its position in the list plus one; 0 for a name that is
/// not in the list. The lists must outlive the parse.
struct XMLVocabulary {
    /// Local names of elements and attributes, all different, at most 65,000.
    std::span<const std::string_view> names;
    /// Namespace URIs, all different, compared as whole strings.
    std::span<const std::string_view> namespaces;
};

/// The name of an element. All views are valid during the event only.
struct XMLElement {
    std::string_view localName;
    /// Empty when the element is in no namespace.
    std::string_view namespaceURI;
    /// Empty when the name has none.
    std::string_view prefix;
    /// The numbers of `localName` and `namespaceURI` in the delegate's vocabulary, or 0.
    std::uint16_t nameNumber = 0;
    std::uint16_t namespaceNumber = 0;

    /// The name as it stands in the document, with its prefix.
    [[nodiscard]] std::string qualifiedName() const {
        return prefix.empty() ? std::string(localName)
                              : std::string(prefix).append(":").append(localName);
    }
};

/// One attribute of an element.
struct XMLAttribute {
    std::string_view localName;
    std::string_view prefix;
    std::string_view value;
    std::uint16_t nameNumber = 0; ///< of `localName` in the delegate's vocabulary, or 0
};

/// The attributes of an element, in document order, namespace declarations not among them. Valid
/// during the event only.
class PELLUVIA_EXPORT XMLAttributes {
  public:
    XMLAttributes() = default;
    explicit XMLAttributes(std::span<const XMLAttribute> attributes) noexcept
        : attributes_(attributes) {}

    /// The value of the attribute with this local name, or nothing. Where several have it under
    /// different prefixes, the one without a prefix counts, otherwise the last.
    [[nodiscard]] std::optional<std::string_view> value(std::string_view localName) const noexcept {
        return find([localName](const XMLAttribute &each) { return each.localName == localName; });
    }
    /// The same by number.
    [[nodiscard]] std::optional<std::string_view> value(std::uint16_t nameNumber) const noexcept {
        return find([nameNumber](const XMLAttribute &each) {
            return each.nameNumber == nameNumber && nameNumber != 0;
        });
    }

    [[nodiscard]] std::size_t size() const noexcept { return attributes_.size(); }
    [[nodiscard]] auto begin() const noexcept { return attributes_.begin(); }
    [[nodiscard]] auto end() const noexcept { return attributes_.end(); }

  private:
    template <class Matches>
    [[nodiscard]] std::optional<std::string_view> find(Matches matches) const noexcept {
        std::optional<std::string_view> found;
        for (const XMLAttribute &each : attributes_) {
            if (matches(each)) {
                found = each.value;
                if (each.prefix.empty()) {
                    break;
                }
            }
        }
        return found;
    }

    std::span<const XMLAttribute> attributes_;
};

/// How much a delegate wants to be told of an element.
enum class XMLInterest : std::uint8_t {
    nothing, ///< neither its tags nor the text in it; for the elements inside, it is asked again
    tags,    ///< its start, its end, and the declarations it makes; then the same as for `nothing`
    all      ///< it and everything inside: tags and text
};

/// What an `XMLParser` reports. Every event is optional: the ones that are not overridden do
/// nothing.
///
/// Threads: all events come on the thread that runs the parse.
class PELLUVIA_EXPORT XMLParserDelegate {
  public:
    virtual ~XMLParserDelegate() = default;

    /// The names that are delivered as numbers; asked before the parse, always the same.
    [[nodiscard]] virtual XMLVocabulary vocabulary() const { return {}; }

    /// A delegate that wants nothing but the names of starting elements says so here; it is then
    /// spared all other events but errors, and the elements' attributes. Asked before the parse,
    /// always the same.
    [[nodiscard]] virtual bool wantsElementNamesOnly() const { return false; }

    /// How much of the element is wanted; what is not is not reported. `around` are the elements
    /// that it stands in, the root first. The answer may depend on nothing but these names: it is
    /// asked now and then, not for every element.
    [[nodiscard]] virtual XMLInterest interestIn(const XMLElement & /*element*/,
                                                 std::span<const XMLElement> /*around*/) const {
        return XMLInterest::all;
    }

    /// An element starts.
    virtual void didStartElement(XMLParser & /*parser*/, const XMLElement & /*element*/,
                                 const XMLAttributes & /*attributes*/) {}
    /// An element ends.
    virtual void didEndElement(XMLParser & /*parser*/, const XMLElement & /*element*/) {}
    /// A piece of the text between two tags; one text may come in any number of pieces.
    virtual void foundCharacters(XMLParser & /*parser*/, std::string_view /*characters*/) {}
    /// A namespace declaration takes effect, before the start of the element that makes it.
    virtual void didStartMappingPrefix(XMLParser & /*parser*/, std::string_view /*prefix*/,
                                       std::string_view /*uri*/) {}
    /// The parse has failed or was aborted; nothing follows.
    virtual void parseErrorOccurred(XMLParser & /*parser*/, const ErrorPtr & /*error*/) {}
};

} // namespace pelluvia
