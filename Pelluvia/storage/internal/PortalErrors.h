// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/values/Error.h>

#include <gio/gio.h>

#include <cstdint>
#include <string>

namespace pelluvia::storage {

/// An error of the prompt's domain. Its description is the text of the code, translated, and the
/// detail.
[[nodiscard]] ErrorPtr portalError(std::int64_t code, const std::string &detail = {});

/// The code for the error of a call on the bus: that the bus or the portal is not there or has gone
/// can be told from any call; `otherwise` stands for the rest.
[[nodiscard]] std::int64_t portalErrorCode(const GError &error, std::int64_t otherwise);

} // namespace pelluvia::storage
