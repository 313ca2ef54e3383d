// SPDX-License-Identifier: MIT

#include <tools/pelluvia/files/AccessRights.h>

#include <sys/xattr.h>
#include <unistd.h>

namespace pelluvia::host {

namespace {

constexpr const char *listName = "system.posix_acl_access";
constexpr mode_t permissions = 0777;

/// The access control list of a file; empty where it has none, or the file system knows of none.
std::string accessListOf(const std::string &path) {
    std::string list;
    ssize_t size = ::getxattr(path.c_str(), listName, nullptr, 0);
    if (size > 0) {
        list.resize(static_cast<std::size_t>(size));
        size = ::getxattr(path.c_str(), listName, list.data(), list.size());
    }
    list.resize(size > 0 ? static_cast<std::size_t>(size) : 0);
    return list;
}

} // namespace

AccessRights::AccessRights(const std::string &path, const struct stat &status)
    : mode_(status.st_mode & permissions),
      owner_(status.st_uid),
      group_(status.st_gid),
      list_(accessListOf(path)) {}

mode_t AccessRights::initialMode() const noexcept {
    return mode_ & (S_IRUSR | S_IWUSR);
}

mode_t AccessRights::narrowed(mode_t mode, bool isSameOwner, bool isSameGroup) noexcept {
    const mode_t owner = mode >> 6U & 07U;
    mode_t group = mode >> 3U & 07U;
    mode_t others = mode & 07U;
    if (!isSameGroup) {
        // Who was a member may now be one of the others, and the other way round.
        group &= others;
        others = group;
    }
    if (!isSameOwner) {
        // The former owner is now a member or one of the others.
        group &= owner;
        others &= owner;
    }
    return owner << 6U | group << 3U | others;
}

void AccessRights::giveTo(int descriptor) const noexcept {
    if (::fchown(descriptor, owner_, group_) != 0) {
        constexpr auto asItIs = static_cast<uid_t>(-1);
        // What came of it is looked at below.
        [[maybe_unused]] const int result = ::fchown(descriptor, asItIs, group_);
    }
    struct stat status = {};
    const bool isKnown = ::fstat(descriptor, &status) == 0;
    const bool isSameOwner = isKnown && status.st_uid == owner_;
    const bool isSameGroup = isKnown && status.st_gid == group_;
    mode_t mode = narrowed(mode_, isSameOwner, isSameGroup);
    if (list_.empty()) {
        // The folder may have given the new file a list that the old one did not have.
        ::fremovexattr(descriptor, listName);
    } else if (!isSameOwner || !isSameGroup ||
               ::fsetxattr(descriptor, listName, list_.data(), list_.size(), 0) != 0) {
        // The group's part is then the list's upper bound, and may be more than the group had.
        mode &= S_IRWXU;
    }
    // Should it fail, the file stays as narrow as it was made.
    ::fchmod(descriptor, mode);
}

} // namespace pelluvia::host
