// SPDX-License-Identifier: MIT

#pragma once

#include <cstdint>
#include <vector>

namespace pelluvia {

/// Bytes whose meaning is known to who made them only.
using Data = std::vector<std::uint8_t>;

} // namespace pelluvia
