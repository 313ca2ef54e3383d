// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/values/Data.h>
#include <Pelluvia/values/Error.h>
#include <Pelluvia/values/Export.h>
#include <Pelluvia/values/URL.h>

#include <optional>

/// \file
/// What stands for a folder that the user has granted. Part of the storage component (link
/// `Pelluvia::storage`).

namespace pelluvia {

/// Bookmark data: bytes that are kept in place of a folder's path and lead back to the folder.
///
/// The data are text: a line with the version, the folder's URI, its device and inode, when it was
/// made, and, for a folder that the desktop portal shares with a sandboxed program, the identifier
/// under which the portal's document store has it; at the end the checksum of all that.
/// docs/storage.md has an example.
///
/// A folder that was renamed, or whose parent was, is found again by its inode and the time when it
/// was made, as long as it has stayed among the entries of the same folder; a folder that was moved
/// further is not. Another folder that has been put in its place is not taken for it. Where a file
/// system tells neither number nor time (FAT, some that are mounted over a network), whatever
/// folder is at the old place is the one.
///
/// What is promised of a URL that data resolve to, whoever has written the data: at that moment its
/// path is absolute, without "." and "..", without a symbolic link in any place, and a folder that
/// the process may list and enter. A path that holds a symbolic link when the data are made is
/// followed then, once, and kept as where it led; a link that is put in the place of a folder later
/// is refused, wherever in the path it stands.
///
/// What is not promised: that nobody swaps the folder after it was looked at, and that the data say
/// what they said when they were made. The checksum finds damage, not intent. Whoever can write a
/// user's settings can name another folder there; the process gets no right by it that it does not
/// have, since rights are the sandbox's affair, and outside of a sandbox those of the user.
///
/// Failures are errors of `NSCocoaErrorDomain` with a description of the reason: 258 for a path
/// that is no path, 259 for data that are missing, damaged, cut off or of another version, 260 when
/// the folder is gone or another one is in its place, 257 when it cannot be read, 256 when it is
/// not a folder any more or a symbolic link stands in the way, and for whatever else the system
/// says.
///
/// Threads: no instances and no state; callable from any thread.
class PELLUVIA_EXPORT Bookmark {
  public:
    Bookmark() = delete;

    /// The data for a folder that is there and can be read now. Nothing when that fails, with the
    /// reason in `error` unless that is null.
    [[nodiscard]] static std::optional<Data> bookmarkData(const URL &folder, ErrorPtr *error);

    /// The folder that the data stand for. With a document identifier, where the document store has
    /// the folder now; without one, or when it is not there, where it was.
    ///
    /// `isStale` (may be null) says whether the data should be made anew: the folder lies elsewhere
    /// now, or its disk has another number. Nothing when the data do not resolve, with
    /// the reason in `error` unless that is null.
    [[nodiscard]] static std::optional<URL>
    URLByResolvingBookmarkData(const Data &data, bool *isStale, ErrorPtr *error);
};

} // namespace pelluvia
