// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/xml/XMLParserDelegate.h>

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

/// \file
/// The tags of a document, taken apart.

namespace pelluvia::xml::scan {

/// How the look at a piece of markup came out.
enum class Look {
    complete,
    cutOff, ///< nothing is wrong with it so far, but it does not end here
    refused ///< wrong, or not for this reader
};

/// A name with its prefix, if it has one.
struct QualifiedName {
    std::string_view whole;
    std::string_view prefix;
    std::string_view local;

    /// Longer ones are not read here; the library has a limit, too.
    static constexpr std::size_t longest = 500;
};

/// Reads a name of ASCII characters, with at most one colon and something on both sides of it, and
/// moves behind it. False, wherever the place then is, when there is none.
[[nodiscard]] bool readName(const char *&at, QualifiedName &name) noexcept;

/// A start tag, as it stands in the document.
struct StartTag {
    struct Attribute {
        QualifiedName name;
        char *begin = nullptr; ///< of the value, without quotes
        char *end = nullptr;
        /// The value means what it says: no references, no white space but spaces, ASCII only.
        bool isPlain = true;

        [[nodiscard]] std::string_view text() const noexcept {
            return {begin, static_cast<std::size_t>(end - begin)};
        }
    };

    QualifiedName name;
    std::vector<Attribute> attributes;   ///< but for namespace declarations; keeps its memory
    std::vector<Attribute> declarations; ///< of namespaces
    std::uint64_t kinds = 0;     ///< a bit for each name that may be among both, some share one
    const char *close = nullptr; ///< `>` or `/>`
    const char *end = nullptr;   ///< behind the tag
    bool isEmpty = false;        ///< it is a whole element

    /// More attributes or declarations than this are refused.
    static constexpr std::size_t mostAttributes = 40;
};

/// Reads the start tag at `at`, where there is `<`, of a text that ends at `end` with zeros behind.
/// Checks all but the namespaces, and resolves nothing.
[[nodiscard]] Look readStartTag(char *at, const char *end, StartTag &tag);

/// Resolves references and white space in the value, in its place, which it never outgrows.
void normalise(StartTag::Attribute &attribute) noexcept;

/// Reads the end tag of an element that has this qualified name; sets `tagEnd` behind it.
[[nodiscard]] Look readEndTag(const char *at, const char *end, std::string_view name,
                              const char *&tagEnd) noexcept;

} // namespace pelluvia::xml::scan
