// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/storage/internal/FolderIdentity.h>
#include <Pelluvia/values/Data.h>

#include <string>
#include <string_view>

namespace pelluvia::storage {

/// What bookmark data say, in no way checked against the world.
struct BookmarkRecord {
    std::string path; ///< absolute
    FolderIdentity identity;
    std::string document; ///< empty: the folder was not in the document store

    friend bool operator==(const BookmarkRecord &, const BookmarkRecord &) = default;
};

[[nodiscard]] Data encoded(const BookmarkRecord &record);

/// Reads data back. Returns what is wrong with them, an English text, or nothing when `record` has
/// been filled.
[[nodiscard]] std::string_view decode(const Data &data, BookmarkRecord &record);

} // namespace pelluvia::storage
