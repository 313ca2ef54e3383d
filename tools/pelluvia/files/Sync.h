// SPDX-License-Identifier: MIT

#pragma once

#include <string>
#include <system_error>

/// \file
/// Waiting until the disk has what was written. A file or folder that cannot be synced, a pipe for
/// instance, is no failure.

namespace pelluvia::host {

/// Waits until the disk has what was written to the descriptor.
[[nodiscard]] std::error_code syncFile(int descriptor) noexcept;

/// Waits until the disk has the name of the file at the path.
[[nodiscard]] std::error_code syncNameOf(const std::string &path);

/// The path of the folder that holds the file at a path.
[[nodiscard]] std::string folderOf(const std::string &path);

} // namespace pelluvia::host
