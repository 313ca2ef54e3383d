// SPDX-License-Identifier: MIT

#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace pelluvia {

/// "00" to "99" in a row: two digits cost one division.
inline constexpr auto digitPairs = [] {
    std::array<char, 200> pairs{};
    for (std::size_t number = 0; number < 100; ++number) {
        pairs[2 * number] = static_cast<char>('0' + number / 10);
        pairs[2 * number + 1] = static_cast<char>('0' + number % 10);
    }
    return pairs;
}();

/// Writes a number below 100 as two digits; returns the position behind them.
inline char *writePair(char *out, std::uint32_t number) noexcept {
    std::memcpy(out, digitPairs.data() + 2 * static_cast<std::size_t>(number), 2);
    return out + 2;
}

/// Writes a number below 10,000 as four digits; returns the position behind them.
inline char *writeFour(char *out, std::uint32_t number) noexcept {
    return writePair(writePair(out, number / 100), number % 100);
}

} // namespace pelluvia
