// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/values/Error.h>
#include <Pelluvia/values/URL.h>

#include <optional>
#include <string_view>

namespace pelluvia {

/// A grant as it was found: the folder, or why there is none.
struct Grant {
    std::optional<URL> url;
    /// In the domain of the framework; its underlying error is the platform's.
    ErrorPtr error;
};

/// Looks up what was kept under a key of `GPSStorageAuthorization` and logs why it does not
/// resolve.
///
/// Threads: callable from any thread.
[[nodiscard]] Grant grantUnderKey(std::string_view key);

} // namespace pelluvia
