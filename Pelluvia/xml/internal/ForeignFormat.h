// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/xml/internal/Failure.h>

#include <optional>
#include <string_view>

namespace pelluvia::xml {

/// Why a file that begins with these bytes is no XML document, and what its user can do, where that
/// can be told: it is compressed, or else no text. Nothing for whatever may be XML; and for what is
/// a text, of which the parser says where it is wrong.
[[nodiscard]] std::optional<Failure> foreignFormat(std::string_view start);

} // namespace pelluvia::xml
