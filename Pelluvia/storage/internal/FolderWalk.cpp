// SPDX-License-Identifier: MIT

#include <Pelluvia/storage/internal/FolderWalk.h>

#include <Pelluvia/storage/internal/FileDescriptor.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <utility>

namespace pelluvia::storage {

namespace {

WalkResult resultOf(int error) {
    switch (error) {
    case ENOENT:
        return WalkResult::Gone;
    case EACCES:
    case EPERM:
        return WalkResult::NotReadable;
    case ENOTDIR:
        return WalkResult::NotAFolder;
    default:
        return WalkResult::OtherError;
    }
}

/// Replaces `folder` by an entry of it, which must be a folder.
WalkResult enter(FileDescriptor &folder, const std::string &name) {
    FileDescriptor entry(::openat(folder.number(), name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    struct stat status {};
    if (!entry.isOpen() || ::fstat(entry.number(), &status) != 0) {
        return resultOf(errno);
    }
    folder = std::move(entry);
    return S_ISDIR(status.st_mode)   ? WalkResult::Arrived
           : S_ISLNK(status.st_mode) ? WalkResult::SymbolicLink
                                     : WalkResult::NotAFolder;
}

/// When the folder was made, as text.
std::string birthOf(const FileDescriptor &folder) {
    struct statx status {};
    if (::statx(folder.number(), "", AT_EMPTY_PATH, STATX_BTIME, &status) != 0 ||
        (status.stx_mask & STATX_BTIME) == 0 || status.stx_btime.tv_sec == 0) {
        return {}; // a system that was made as an image has many folders without a time
    }
    return std::to_string(status.stx_btime.tv_sec) + "." + std::to_string(status.stx_btime.tv_nsec);
}

/// Whether the file system's inode numbers are the same whenever it is mounted. Those of some are
/// made up while it is.
bool hasLastingInodes(const FileDescriptor &folder) {
    struct statfs status {};
    if (::fstatfs(folder.number(), &status) != 0) {
        return false;
    }
    constexpr std::array<std::uint32_t, 7> withoutNumbers = {
        0x4D44,     // FAT
        0x2011BAB0, // exFAT
        0x65735546, // FUSE, and with it the document store
        0xFF534D42, // SMB
        0xFE534D42, // SMB 2
        0x01021997, // 9p
        0x794C7630, // overlays
    };
    // The type is signed on some machines.
    const auto type = static_cast<std::uint32_t>(status.f_type);
    return std::find(withoutNumbers.begin(), withoutNumbers.end(), type) == withoutNumbers.end();
}

WalkResult lookAt(const FileDescriptor &folder, FolderIdentity &identity) {
    struct stat status {};
    if (::faccessat(folder.number(), ".", R_OK | X_OK, AT_EACCESS) != 0 ||
        ::fstat(folder.number(), &status) != 0) {
        return resultOf(errno);
    }
    identity = {.device = status.st_dev,
                .inode = status.st_ino,
                .born = birthOf(folder),
                .hasLastingInode = hasLastingInodes(folder)};
    return WalkResult::Arrived;
}

} // namespace

WalkResult walkTo(std::string_view path, FolderIdentity &identity) {
    if (!path.starts_with('/') || path.find('\0') != std::string_view::npos) {
        return WalkResult::NotAPath;
    }
    FileDescriptor folder(::open("/", O_PATH | O_DIRECTORY | O_CLOEXEC));
    if (!folder.isOpen()) {
        return resultOf(errno);
    }
    for (std::string_view rest = path.substr(1); !rest.empty();) {
        const std::string name(rest.substr(0, rest.find('/')));
        if (name.empty() || name == "." || name == "..") {
            return WalkResult::NotAPath;
        }
        if (const WalkResult result = enter(folder, name); result != WalkResult::Arrived) {
            return result;
        }
        rest.remove_prefix(name.size() < rest.size() ? name.size() + 1 : name.size());
    }
    return lookAt(folder, identity);
}

} // namespace pelluvia::storage
