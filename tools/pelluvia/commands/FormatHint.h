// SPDX-License-Identifier: MIT

#pragma once

#include <string>

namespace pelluvia::host {

/// What to say of a file that could not be read as GPX since it is of another format that we know:
/// which, and how to say so on the command line. Empty for every other file, and for one that
/// cannot be opened.
[[nodiscard]] std::string formatHint(const std::string &path);

} // namespace pelluvia::host
