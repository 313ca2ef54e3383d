// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/values/Error.h>
#include <Pelluvia/values/Export.h>

#include <string>

namespace pelluvia {

/// An error in one line, as all lines of the log show it: its domain, its code and its localized
/// description. "(null)" for null.
///
///     Error Domain=NSCocoaErrorDomain Code=260 "The folder is gone: /home/me/GPS"
///
/// Threads: callable from any thread.
[[nodiscard]] PELLUVIA_EXPORT std::string logTextOf(const ErrorPtr &error);

} // namespace pelluvia
