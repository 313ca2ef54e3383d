// SPDX-License-Identifier: MIT

#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <sys/stat.h>

/// \file
/// The only place that external entities are read from.

namespace pelluvia::xml {

/// A file that may be read, or the reason why not.
struct EntityFile {
    int descriptor = -1; ///< open for reading, owned by the receiver; -1 when refused
    std::string path;    ///< canonical
    std::string reason;  ///< why it was refused
};

/// The folder that holds a document. Only regular files in it or below it can be opened through it:
/// no other file, however the name is spelled and whatever symbolic links are in the way, no
/// device, no pipe, nothing from a network.
class EntityFolder {
  public:
    /// The folder of the document that was opened from `path`. Nothing when the document is no
    /// regular file or its name is one of those in /dev or /proc that stand for an open descriptor:
    /// its folder would mean nothing to whoever passed it.
    [[nodiscard]] static std::optional<EntityFolder> holding(const std::string &path,
                                                             int descriptor);

    EntityFolder(EntityFolder &&other) noexcept;
    EntityFolder &operator=(EntityFolder &&other) noexcept;
    ~EntityFolder();

    /// Opens what a system identifier (a URI reference, relative to the folder `base`) names.
    [[nodiscard]] EntityFile open(std::string_view systemIdentifier, const std::string &base) const;

    [[nodiscard]] const std::string &path() const noexcept { return path_; }

  private:
    EntityFolder(std::string path, int descriptor) noexcept;

    std::string path_; ///< canonical, without a slash at the end
    int descriptor_;
};

/// The folder part of a canonical path, without a slash at the end (so that the root's is empty).
[[nodiscard]] std::string folderOf(const std::string &path);

} // namespace pelluvia::xml
