// SPDX-License-Identifier: MIT

#pragma once

#include <string>
#include <sys/stat.h>

namespace pelluvia::host {

/// Who may do what with a file: its owner, its group, its permissions, and its access control list
/// where it has one. Read once, for the file that is to take its place.
///
/// Threads: none.
class AccessRights {
  public:
    /// Those of the file at the path, of which `status` tells.
    AccessRights(const std::string &path, const struct stat &status);

    /// What a file may be made with that is to be given these rights: the owner's part of them, so
    /// that it is never open to more people than the one whose place it takes.
    [[nodiscard]] mode_t initialMode() const noexcept;

    /// Gives them to a new file of this process. Only who may give files away can keep the owner,
    /// and only a member can keep the group; where one of them changes, the permissions are
    /// narrowed. At worst the file stays its owner's alone.
    void giveTo(int descriptor) const noexcept;

    /// The permissions `mode` without those that somebody would gain by a change of owner or group.
    /// The new owner keeps the owner's part: it is who wrote the file.
    [[nodiscard]] static mode_t narrowed(mode_t mode, bool isSameOwner, bool isSameGroup) noexcept;

  private:
    mode_t mode_;
    uid_t owner_;
    gid_t group_;
    std::string list_; ///< as the kernel hands it out; empty for none
};

} // namespace pelluvia::host
