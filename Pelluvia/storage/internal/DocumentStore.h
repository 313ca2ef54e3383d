// SPDX-License-Identifier: MIT

#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// \file
/// The portal's document store: a folder in which a sandboxed program finds what it was granted, as
/// `doc/IDENTIFIER/NAME` in the user's runtime folder.

namespace pelluvia::storage {

/// A folder in the document store.
struct Document {
    std::string identifier;
    std::string name;
};

/// The document that a path names, or nothing for a path outside of the store.
[[nodiscard]] std::optional<Document> documentAt(std::string_view path);

/// Where the document may be found, the likeliest place first. None for an identifier or name that
/// is not one part of a path.
[[nodiscard]] std::vector<std::string> placesOf(const Document &document);

} // namespace pelluvia::storage
