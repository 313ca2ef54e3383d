// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>

namespace pelluvia::testing {

/// A message catalogue in the binary form that gettext reads (in the byte order of this machine):
/// a head of seven numbers, for each text its length and place, the same for the translations, and
/// the texts themselves, each closed by a NUL and sorted.
[[nodiscard]] inline std::string
messageCatalogue(const std::map<std::string, std::string> &translations) {
    const auto count = static_cast<std::uint32_t>(translations.size());
    const std::uint32_t head = 28;
    const std::uint32_t table = 8 * count;
    std::string texts;
    std::string tables[2];
    const auto number = [](std::string &target, std::size_t value) {
        const auto narrow = static_cast<std::uint32_t>(value);
        target.append(reinterpret_cast<const char *>(&narrow), sizeof narrow); // NOLINT
    };
    const auto add = [&](std::string &target, const std::string &text) {
        number(target, text.size());
        number(target, head + 2 * table + texts.size());
        texts += text + '\0';
    };
    for (const auto &[text, translation] : translations) {
        add(tables[0], text);
        add(tables[1], translation);
    }
    std::string file;
    for (const std::uint32_t value :
         {0x950412DEU, 0U, count, head, head + table, 0U, head + 2 * table}) {
        number(file, value);
    }
    return file + tables[0] + tables[1] + texts;
}

} // namespace pelluvia::testing
