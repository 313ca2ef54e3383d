// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/xml/XMLParserDelegate.h>
#include <Pelluvia/xml/internal/scan/StartTag.h>
#include <Pelluvia/xml/internal/scan/Vocabulary.h>

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace pelluvia::xml::scan {

/// A namespace declaration.
struct Declaration {
    std::string_view prefix; ///< empty for the default namespace
    std::string_view uri;
};

/// An element as a place in the document: the name of a tag, what is declared there, and the place
/// around it. All elements with the same name and declarations in the same place are one of these,
/// so that its names are resolved once.
struct Element {
    Element *parent = nullptr; ///< null for a root
    /// The innermost element with declarations, of this one and those around it; null for none.
    const Element *scope = nullptr;
    std::size_t depth = 0; ///< 1 for a root
    XMLElement name;       ///< resolved; as delegates get it
    std::string_view qualifiedName;
    std::vector<Declaration> declarations;
    std::size_t declared = 0;                ///< declarations in force: these and those around it
    XMLInterest interest = XMLInterest::all; ///< of the delegate
    bool wantsText = false;                  ///< the text in it is reported
    std::string text; ///< what the views are on, but for those on other elements
};

/// The elements that were seen, each where it stands: a tree, of which the open elements are one
/// branch.
class ElementTree {
  public:
    /// The delegate is asked for its interest in each.
    ElementTree(const Vocabulary &vocabulary, const XMLParserDelegate &delegate)
        : vocabulary_(vocabulary),
          delegate_(delegate),
          hasText_(!delegate.wantsElementNamesOnly()) {}

    /// The element of a start tag inside `parent` (null for a root), the same one for the same tag.
    /// Null when it cannot be read here: it is nested too deep, or its namespaces are unusual.
    [[nodiscard]] Element *child(Element *parent, const StartTag &tag);

    /// The tree has grown as far as it may. It still grows, but should be pruned.
    [[nodiscard]] bool isFull() const noexcept;
    /// Forgets all elements but one and those around it.
    void keepOnly(const Element *branch);

    /// Elements that are kept at most, and the bytes of their texts.
    static constexpr std::size_t mostElements = 2000;
    static constexpr std::size_t mostText = 400'000;
    /// A URI of more bytes is not read here, nor more declarations that are in force.
    static constexpr std::size_t longestURI = 500;
    static constexpr std::size_t mostDeclarations = 200;

  private:
    /// What tells the children of an element apart, and theirs from others'.
    struct Key {
        const Element *parent;
        std::string_view text; ///< of the element
        [[nodiscard]] bool operator==(const Key &) const = default;
    };
    /// Not noexcept, although it throws nothing: the table then keeps the hashes.
    struct Hash {
        [[nodiscard]] std::size_t operator()(const Key &key) const;
    };

    [[nodiscard]] XMLInterest interestIn(const Element &element);
    void lookAround(const Element &element);
    [[nodiscard]] std::unique_ptr<Element> make(Element *parent, const StartTag &tag);

    const Vocabulary &vocabulary_;
    const XMLParserDelegate &delegate_;
    const bool hasText_; ///< text is reported, where the delegate wants all
    std::unordered_map<Key, std::unique_ptr<Element>, Hash> elements_;
    std::size_t textSize_ = 0;
    std::string key_; ///< scratch
    /// The elements around the last one that the delegate was asked about, the root first: most of
    /// them are around the next one, too.
    std::vector<const Element *> branch_;
    std::vector<XMLElement> around_; ///< their names
};

} // namespace pelluvia::xml::scan
