// SPDX-License-Identifier: MIT

#pragma once

#include <cstdint>
#include <string>

namespace pelluvia::storage {

/// Which folder it is that bears a path: what does not change when it is renamed.
struct FolderIdentity {
    /// Of the disk. Another one after the next start of the machine, on many.
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    /// When it was made, in seconds and nanoseconds, as text; empty where the system does not tell.
    /// It tells a folder from a later one that was given the inode of the first.
    std::string born = {};
    /// Whether the inode is the same each time that the disk is mounted. True of an identity that
    /// was kept, of which nobody knows.
    bool hasLastingInode = true;

    friend bool operator==(const FolderIdentity &one, const FolderIdentity &other) noexcept {
        return one.device == other.device && one.inode == other.inode && one.born == other.born;
    }
};

/// Whether a folder that was found where another one had been is that one, as far as the system can
/// tell.
[[nodiscard]] inline bool isTakenFor(const FolderIdentity &found,
                                     const FolderIdentity &kept) noexcept {
    const bool knowsBirths = !found.born.empty() && !kept.born.empty();
    return (found.inode == kept.inode || !found.hasLastingInode) &&
           (found.born == kept.born || !knowsBirths);
}

/// Whether a folder that was found elsewhere is surely the one that was kept. An inode alone does
/// not say that: it is given to new folders when the old one is removed.
[[nodiscard]] inline bool isSurely(const FolderIdentity &found,
                                   const FolderIdentity &kept) noexcept {
    return found.inode == kept.inode && found.born == kept.born && !kept.born.empty();
}

} // namespace pelluvia::storage
