// SPDX-License-Identifier: MIT

#include <Pelluvia/storage/Bookmark.h>

#include <Pelluvia/storage/internal/BookmarkRecord.h>
#include <Pelluvia/storage/internal/DocumentStore.h>
#include <Pelluvia/storage/internal/FolderSearch.h>
#include <Pelluvia/storage/internal/FolderWalk.h>
#include <Pelluvia/system/Localization.h>
#include <Pelluvia/values/CocoaErrors.h>

#include <cerrno>
#include <filesystem>
#include <system_error>

namespace pelluvia {

namespace {

using storage::BookmarkRecord;
using storage::WalkResult;

ErrorPtr errorOf(std::int64_t code, std::string_view text) {
    return Error::make(NSCocoaErrorDomain, code,
                       {{std::string(NSLocalizedDescriptionKey), std::string(localized(text))}});
}

ErrorPtr errorOf(std::int64_t code, std::string_view text, const std::string &path) {
    return Error::make(
        NSCocoaErrorDomain, code,
        {{std::string(NSLocalizedDescriptionKey), std::string(localized(text)) + ": " + path},
         {std::string(NSFilePathErrorKey), path}});
}

/// The error for a walk that did not arrive; to be called before `errno` changes.
ErrorPtr errorOf(WalkResult result, const std::string &path) {
    const int error = errno;
    switch (result) {
    case WalkResult::Arrived:
        return nullptr;
    case WalkResult::NotAPath:
        return errorOf(NSFileReadInvalidFileNameError, "Not an absolute path", path);
    case WalkResult::SymbolicLink:
        return errorOf(NSFileReadUnknownError, "There is a symbolic link in the path", path);
    case WalkResult::NotAFolder:
        return errorOf(NSFileReadUnknownError, "Not a folder", path);
    case WalkResult::Gone:
        return errorOf(NSFileReadNoSuchFileError, "The folder is gone", path);
    case WalkResult::NotReadable:
        return errorOf(NSFileReadNoPermissionError, "The folder cannot be read", path);
    case WalkResult::OtherError:
        break;
    }
    return errorOf(NSFileReadUnknownError, std::generic_category().message(error), path);
}

void give(ErrorPtr error, ErrorPtr *target) {
    if (target != nullptr) {
        *target = std::move(error);
    }
}

/// The path without symbolic links, "." and ".."; the path itself where that cannot be had.
std::string canonical(const std::string &path) {
    std::error_code error;
    const std::filesystem::path real = std::filesystem::canonical(path, error);
    return error ? path : real.string();
}

/// Where the document store has the folder of a record now, or nothing.
std::optional<std::string> placeInStore(const BookmarkRecord &record) {
    const std::string name = record.path.substr(record.path.rfind('/') + 1);
    for (const std::string &place : storage::placesOf({record.document, name})) {
        storage::FolderIdentity identity;
        if (storage::walkTo(place, identity) == WalkResult::Arrived) {
            return place;
        }
    }
    return std::nullopt;
}

/// Where a folder was found.
struct Place {
    std::string path;
    bool isElsewhere = false; ///< than the record says, or on a disk with another number
};

/// Finds the folder of a record where it was, or under another name. Returns why it is not found.
ErrorPtr findWithoutStore(const BookmarkRecord &record, Place &place) {
    storage::FolderIdentity identity;
    const WalkResult result = storage::walkTo(record.path, identity);
    const bool hasArrived = result == WalkResult::Arrived;
    if (hasArrived && isTakenFor(identity, record.identity)) {
        place = {record.path, !(identity == record.identity)};
        return nullptr;
    }
    ErrorPtr reason = hasArrived ? errorOf(NSFileReadNoSuchFileError,
                                           "Another folder is in its place", record.path)
                                 : errorOf(result, record.path);
    // A link in the way is refused, and what must not be read is not looked around for.
    if (hasArrived || result == WalkResult::Gone || result == WalkResult::NotAFolder) {
        if (auto found = storage::findRenamed(record.path, record.identity)) {
            place = {std::move(*found), true};
            return nullptr;
        }
    }
    return reason;
}

} // namespace

std::optional<Data> Bookmark::bookmarkData(const URL &folder, ErrorPtr *error) {
    if (folder.path().find('\0') != std::string::npos) {
        give(errorOf(WalkResult::NotAPath, folder.path()), error);
        return std::nullopt;
    }
    BookmarkRecord record{.path = canonical(folder.path()), .identity = {}, .document = {}};
    const WalkResult result = storage::walkTo(record.path, record.identity);
    if (result != WalkResult::Arrived) {
        give(errorOf(result, record.path), error);
        return std::nullopt;
    }
    if (const auto document = storage::documentAt(record.path)) {
        record.document = document->identifier;
    }
    return storage::encoded(record);
}

std::optional<URL> Bookmark::URLByResolvingBookmarkData(const Data &data, bool *isStale,
                                                        ErrorPtr *error) {
    BookmarkRecord record;
    if (const std::string_view reason = storage::decode(data, record); !reason.empty()) {
        give(errorOf(NSFileReadCorruptFileError, reason), error);
        return std::nullopt;
    }
    Place place;
    if (auto inStore = placeInStore(record)) {
        // The store gives out new numbers whenever it is mounted, so the identity says nothing.
        place.isElsewhere = *inStore != record.path;
        place.path = std::move(*inStore);
    } else if (const ErrorPtr reason = findWithoutStore(record, place)) {
        give(reason, error);
        return std::nullopt;
    }
    if (isStale != nullptr) {
        *isStale = place.isElsewhere;
    }
    return URL::fileURLWithPath(place.path);
}

} // namespace pelluvia
