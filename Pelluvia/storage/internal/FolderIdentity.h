#pragma once

#include <cstdint>

namespace pelluvia::storage {

/// Which folder it is that bears a path: what does not change when it is renamed.
struct FolderIdentity {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;

    friend bool operator==(const FolderIdentity &, const FolderIdentity &) = default;
};

} // namespace pelluvia::storage
