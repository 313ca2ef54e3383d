// SPDX-License-Identifier: MIT

#include <Pelluvia/storage/internal/Base64.h>

#include <cstdint>
#include <utility>

namespace pelluvia::storage {

namespace {

constexpr std::string_view digits =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::size_t bytesInGroup = 3;
constexpr std::size_t digitsInGroup = 4;
constexpr unsigned bitsInDigit = 6;
constexpr unsigned bitsInByte = 8;

} // namespace

std::string base64Of(const Data &bytes) {
    std::string text;
    text.reserve((bytes.size() + bytesInGroup - 1) / bytesInGroup * digitsInGroup);
    for (std::size_t at = 0; at < bytes.size(); at += bytesInGroup) {
        std::uint32_t group = 0;
        for (std::size_t each = at; each < at + bytesInGroup; ++each) {
            group = (group << bitsInByte) | (each < bytes.size() ? bytes[each] : 0U);
        }
        for (std::size_t digit = 0; digit < digitsInGroup; ++digit) {
            const auto shift = static_cast<unsigned>(digitsInGroup - 1 - digit) * bitsInDigit;
            text += at + digit <= bytes.size() ? digits[(group >> shift) & 0x3FU] : '=';
        }
    }
    return text;
}

std::optional<Data> bytesOfBase64(std::string_view text) {
    Data bytes;
    bytes.reserve(text.size() / digitsInGroup * bytesInGroup);
    std::uint32_t group = 0;
    unsigned bits = 0;
    for (const char c : text.substr(0, text.find('='))) {
        const std::size_t value = digits.find(c);
        if (value == std::string_view::npos) {
            return std::nullopt;
        }
        group = (group << bitsInDigit) | static_cast<std::uint32_t>(value);
        bits += bitsInDigit;
        if (bits >= bitsInByte) {
            bits -= bitsInByte;
            bytes.push_back(static_cast<std::uint8_t>((group >> bits) & 0xFFU));
        }
    }
    // Of padding there must be as much as there should be, and nothing in the bits left over.
    return base64Of(bytes) == text ? std::optional(std::move(bytes)) : std::nullopt;
}

} // namespace pelluvia::storage
