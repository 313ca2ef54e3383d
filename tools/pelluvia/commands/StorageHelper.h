// SPDX-License-Identifier: MIT

#pragma once

#include <tools/pelluvia/commandline/Options.h>

namespace pelluvia::host {

/// Runs `pelluvia authorize` or `authorized`: becomes the helper program of the storage component,
/// which links the desktop's libraries that this program does without. Returns, with an exit status
/// and a word on standard error, only when there is no helper.
[[nodiscard]] int becomeStorageHelper(const StorageOptions &options);

} // namespace pelluvia::host
