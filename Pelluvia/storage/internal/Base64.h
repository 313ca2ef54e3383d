// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/values/Data.h>

#include <optional>
#include <string>
#include <string_view>

namespace pelluvia::storage {

/// The bytes in Base64, with padding and without line ends.
[[nodiscard]] std::string base64Of(const Data &bytes);

/// The bytes behind such a text. Nothing for any other text: what does not encode to the very same
/// text was damaged.
[[nodiscard]] std::optional<Data> bytesOfBase64(std::string_view text);

} // namespace pelluvia::storage
