#include <Pelluvia/storage/internal/FolderWalk.h>

#include <Pelluvia/storage/internal/FileDescriptor.h>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
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

WalkResult lookAt(const FileDescriptor &folder, FolderIdentity &identity) {
    struct stat status {};
    if (::faccessat(folder.number(), ".", R_OK | X_OK, AT_EACCESS) != 0 ||
        ::fstat(folder.number(), &status) != 0) {
        return resultOf(errno);
    }
    identity = {.device = status.st_dev, .inode = status.st_ino};
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
