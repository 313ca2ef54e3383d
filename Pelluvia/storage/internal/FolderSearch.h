// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/storage/internal/FolderIdentity.h>

#include <optional>
#include <string>

namespace pelluvia::storage {

/// Where a folder that is not at its absolute path any more is now, if it, or the folder that holds
/// it, was renamed and stayed among the entries of the same folder. No symbolic link is followed.
/// Looks at all entries of one folder, so it costs time where there are many thousands.
[[nodiscard]] std::optional<std::string> findRenamed(const std::string &path,
                                                     const FolderIdentity &identity);

} // namespace pelluvia::storage
