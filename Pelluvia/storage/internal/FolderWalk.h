// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/storage/internal/FolderIdentity.h>

#include <string>
#include <string_view>

namespace pelluvia::storage {

/// What a walk to a folder found.
enum class WalkResult {
    Arrived,      ///< a folder that the process may list and enter
    NotAPath,     ///< relative, or with a part that is empty, "." or ".."
    SymbolicLink, ///< one stands in the path
    NotAFolder,   ///< a part of the path is something else
    Gone,         ///< a part of the path is not there
    NotReadable,  ///< the process may not go on
    OtherError    ///< `errno` says which
};

/// Goes down an absolute path from the root, one folder after the other, and follows no symbolic
/// link. `identity` is filled on arrival.
[[nodiscard]] WalkResult walkTo(std::string_view path, FolderIdentity &identity);

} // namespace pelluvia::storage
