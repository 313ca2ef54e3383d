// SPDX-License-Identifier: MIT

#include <Pelluvia/xml/internal/scan/Bytes.h>
#include <Pelluvia/xml/internal/scan/Characters.h>

#include <array>
#include <charconv>
#include <cstdint>
#include <cstring>

namespace pelluvia::xml::scan {

namespace {

unsigned byteAt(const char *at) noexcept {
    return static_cast<unsigned char>(*at);
}

bool continues(const char *at) noexcept {
    return (byteAt(at) & 0xC0U) == 0x80;
}

/// The length of the multibyte character at `at`, or 0. A zero behind the text ends every check, so
/// nothing behind it is read.
std::size_t characterLength(const char *at) noexcept {
    const unsigned lead = byteAt(at);
    if (lead < 0xC2 || lead > 0xF4 || !continues(at + 1)) {
        return 0;
    }
    if (lead < 0xE0) {
        return 2;
    }
    const unsigned second = byteAt(at + 1);
    if (!continues(at + 2)) {
        return 0;
    }
    if (lead < 0xF0) {
        const bool isOverlong = lead == 0xE0 && second < 0xA0;
        const bool isSurrogate = lead == 0xED && second > 0x9F;
        const bool isNoCharacter = lead == 0xEF && second == 0xBF && byteAt(at + 2) >= 0xBE;
        return isOverlong || isSurrogate || isNoCharacter ? 0 : 3;
    }
    const bool isOverlong = lead == 0xF0 && second < 0x90;
    const bool isBeyond = lead == 0xF4 && second > 0x8F;
    return isOverlong || isBeyond || !continues(at + 3) ? 0 : 4;
}

constexpr bool isCharacter(std::uint32_t code) noexcept {
    return code == '\t' || code == '\n' || code == '\r' || (code >= 0x20 && code <= 0xD7FF) ||
           (code >= 0xE000 && code <= 0xFFFD) || (code >= 0x10000 && code <= 0x10FFFF);
}

Character characterOf(std::uint32_t code) noexcept {
    constexpr std::array<std::uint32_t, 3> limits = {0x80, 0x800, 0x10000};
    constexpr std::array<std::uint32_t, 4> leads = {0, 0xC0, 0xE0, 0xF0};
    std::size_t more = 0; // bytes behind the first
    while (more < limits.size() && code >= limits[more]) {
        ++more;
    }
    Character character;
    character.size = more + 1;
    for (std::size_t i = more; i != 0; --i) {
        character.bytes[i] = static_cast<char>(0x80U | (code & 0x3FU));
        code >>= 6U;
    }
    character.bytes[0] = static_cast<char>(leads[more] | code);
    return character;
}

/// What stands between `&#` and `;`.
Character characterNumbered(std::string_view digits) noexcept {
    const bool isHexadecimal = digits.starts_with('x');
    digits.remove_prefix(isHexadecimal ? 1 : 0);
    std::uint32_t code = 0;
    const char *const end = digits.data() + digits.size();
    const auto result = std::from_chars(digits.data(), end, code, isHexadecimal ? 16 : 10);
    const bool isNumber = result.ec == std::errc() && result.ptr == end;
    return isNumber && isCharacter(code) ? characterOf(code) : Character();
}

Character characterNamed(std::string_view name) noexcept {
    struct Named {
        std::string_view name;
        char character;
    };
    constexpr std::array<Named, 5> known = {
        {{"amp", '&'}, {"lt", '<'}, {"gt", '>'}, {"quot", '"'}, {"apos", '\''}}};
    for (const Named &each : known) {
        if (each.name == name) {
            return {{each.character}, 1};
        }
    }
    return {};
}

} // namespace

const char *skipMultibyte(const char *at) noexcept {
    while (isMultibyte(*at)) {
        const std::size_t length = characterLength(at);
        if (length == 0) {
            break;
        }
        at += length;
    }
    return at;
}

Character readReference(const char *&at) noexcept {
    const char *const begin = at + 1;
    const char *end = begin;
    while (*end != ';' && *end != '\0' &&
           end - at < static_cast<std::ptrdiff_t>(longestReference) - 1) {
        ++end;
    }
    if (*end != ';') {
        return {};
    }
    const std::string_view body(begin, static_cast<std::size_t>(end - begin));
    const Character character =
        body.starts_with('#') ? characterNumbered(body.substr(1)) : characterNamed(body);
    if (character.size != 0) {
        at = end + 1;
    }
    return character;
}

} // namespace pelluvia::xml::scan
