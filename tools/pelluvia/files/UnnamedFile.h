// SPDX-License-Identifier: MIT

#pragma once

#include <tools/pelluvia/files/Descriptor.h>

#include <string>
#include <system_error>

namespace pelluvia::host {

/// The folder for temporary files: what the environment names as TMPDIR, or /tmp.
[[nodiscard]] std::string temporaryFolder();

/// A new file in the folder that has no name, open for reading and writing, and is gone when it is
/// closed, however the process ends.
[[nodiscard]] Descriptor openUnnamedFile(const std::string &folder, std::error_code &error);

} // namespace pelluvia::host
