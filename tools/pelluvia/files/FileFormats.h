// SPDX-License-Identifier: MIT

#pragma once

#include <tools/pelluvia/commandline/Options.h>

#include <string>

/// \file
/// Which format a file has: the one that its option names, else the one that the ending of its path
/// stands for, in capitals or not; `-` is GPX. An ending that stands for none is a
/// `CLI::ValidationError` that names the option which would help.

namespace pelluvia::host {

/// `chosen` is the value of `--from`, empty when it was not given. A path that cannot be read is
/// taken for GPX: why it cannot says more than its ending, and reading it will tell.
[[nodiscard]] Format sourceFormat(const std::string &path, const std::string &chosen);

/// The same of a file that is only to be looked at: an ending that stands for no format is no
/// mistake there but means GPX.
[[nodiscard]] Format shownFormat(const std::string &path, const std::string &chosen);

/// `chosen` is the value of `--to`, empty when it was not given.
[[nodiscard]] Format targetFormat(const std::string &path, const std::string &chosen);

} // namespace pelluvia::host
