// SPDX-License-Identifier: MIT

#include <Pelluvia/storage/internal/FolderSearch.h>

#include <Pelluvia/storage/internal/FolderWalk.h>

#include <filesystem>
#include <system_error>

namespace pelluvia::storage {

namespace {

/// Looks for `ANY/rest` in a folder; without a rest, for any entry.
std::optional<std::string> findBelow(const std::filesystem::path &folder,
                                     const std::filesystem::path &rest,
                                     const FolderIdentity &identity) {
    std::error_code error;
    std::filesystem::directory_iterator entry(folder, error);
    while (!error && entry != std::filesystem::directory_iterator()) {
        std::error_code unknown;
        if (std::filesystem::is_directory(entry->symlink_status(unknown))) {
            const std::string place = rest.empty() ? entry->path() : entry->path() / rest;
            FolderIdentity found;
            if (walkTo(place, found) == WalkResult::Arrived && isSurely(found, identity)) {
                return place;
            }
        }
        entry.increment(error);
    }
    return std::nullopt;
}

} // namespace

std::optional<std::string> findRenamed(const std::string &path, const FolderIdentity &identity) {
    const std::filesystem::path place(path);
    const std::filesystem::path parent = place.parent_path();
    FolderIdentity ofParent;
    switch (walkTo(parent.string(), ofParent)) {
    case WalkResult::Arrived:
        return findBelow(parent, {}, identity);
    case WalkResult::Gone:
        if (walkTo(parent.parent_path().string(), ofParent) == WalkResult::Arrived) {
            return findBelow(parent.parent_path(), place.filename(), identity);
        }
        return std::nullopt;
    default:
        return std::nullopt;
    }
}

} // namespace pelluvia::storage
