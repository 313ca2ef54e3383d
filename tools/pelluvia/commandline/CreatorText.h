// SPDX-License-Identifier: MIT

#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace pelluvia::host {

/// A text as it stands in a quoted XML attribute of an ASCII document: reserved characters as
/// entities, characters beyond ASCII as character references. Nothing when the text has characters
/// that do not belong there: control characters, what XML cannot hold, bytes that are not UTF-8.
[[nodiscard]] std::optional<std::string> attributeText(std::string_view text);

} // namespace pelluvia::host
