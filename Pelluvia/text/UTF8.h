// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/values/Export.h>

#include <cstddef>
#include <string_view>

namespace pelluvia {

/// The number of bytes of the character that `text`, which is not empty, begins with, when they are
/// well-formed UTF-8; otherwise 0. Overlong forms, surrogates and what lies beyond U+10FFFF are
/// not well-formed.
[[nodiscard]] PELLUVIA_EXPORT std::size_t wellFormedCharacterLength(std::string_view text) noexcept;

} // namespace pelluvia
