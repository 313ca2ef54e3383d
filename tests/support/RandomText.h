// SPDX-License-Identifier: MIT

#pragma once

#include <string>
#include <string_view>
#include <tests/support/Chance.h>

namespace pelluvia::testing {

/// Up to 15 bytes: mostly what numbers and characters of several bytes are made of, so that many
/// texts almost hold one.
inline std::string randomText(Chance &random) {
    constexpr std::string_view common = "0129.-+ eE\xE2\x82\xAC\xF0\x9F\x98\x80";
    std::string text(random() % 16, ' ');
    for (char &c : text) {
        c = random() % 8 != 0 ? common[random() % common.size()]
                              : static_cast<char>(random() % 256);
    }
    return text;
}

} // namespace pelluvia::testing
