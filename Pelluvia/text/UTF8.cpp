// SPDX-License-Identifier: MIT

#include <Pelluvia/text/UTF8.h>

#include <algorithm>

namespace pelluvia {

namespace {

/// What may follow a first byte: how many bytes, and the range of the first of them. The others
/// are 0x80 to 0xBF.
struct Continuation {
    std::size_t count;
    unsigned char lowest;
    unsigned char highest;
};

constexpr Continuation continuationOf(unsigned char first) noexcept {
    if (first < 0xC2 || first > 0xF4) {
        return {0, 0, 0};
    }
    if (first < 0xE0) {
        return {1, 0x80, 0xBF};
    }
    if (first < 0xF0) {
        // 0xE0: no overlong forms; 0xED: no surrogates.
        return {2, static_cast<unsigned char>(first == 0xE0 ? 0xA0 : 0x80),
                static_cast<unsigned char>(first == 0xED ? 0x9F : 0xBF)};
    }
    // 0xF0: no overlong forms; 0xF4: nothing beyond U+10FFFF.
    return {3, static_cast<unsigned char>(first == 0xF0 ? 0x90 : 0x80),
            static_cast<unsigned char>(first == 0xF4 ? 0x8F : 0xBF)};
}

bool isBetween(char c, unsigned char lowest, unsigned char highest) noexcept {
    const auto byte = static_cast<unsigned char>(c);
    return byte >= lowest && byte <= highest;
}

} // namespace

std::size_t wellFormedCharacterLength(std::string_view text) noexcept {
    const auto first = static_cast<unsigned char>(text.front());
    if (first < 0x80) {
        return 1;
    }
    const Continuation next = continuationOf(first);
    if (next.count == 0 || text.size() <= next.count ||
        !isBetween(text[1], next.lowest, next.highest)) {
        return 0;
    }
    const std::string_view rest = text.substr(2, next.count - 1);
    const bool isWellFormed =
        std::all_of(rest.begin(), rest.end(), [](char c) { return isBetween(c, 0x80, 0xBF); });
    return isWellFormed ? next.count + 1 : 0;
}

} // namespace pelluvia
