// SPDX-License-Identifier: MIT

#include <Pelluvia/formats/calllog/JSONText.h>

#include <Pelluvia/text/UTF8.h>

#include <Pelluvia/text/NumberText.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstring>

namespace pelluvia {

namespace {

char *append(char *out, std::string_view text) noexcept {
    std::memcpy(out, text.data(), text.size());
    return out + text.size();
}

template <class Real>
char *writeRealText(char *out, Real value) noexcept {
    if (!std::isfinite(value)) {
        return append(out, std::isnan(value) ? R"({"real":"NaN"})"
                           : value > 0       ? R"({"real":"Infinity"})"
                                             : R"({"real":"-Infinity"})");
    }
    char *end = std::to_chars(out, out + JSONText::maxRealText, value).ptr;
    const bool looksLikeInteger =
        std::none_of(out, end, [](char c) { return c == '.' || c == 'e'; });
    return looksLikeInteger ? append(end, ".0") : end;
}

/// The bytes that stand in a JSON string as they are, without a look at what follows them.
constexpr auto standsForItself = [] {
    std::array<bool, 256> table{};
    for (std::size_t byte = 0x20; byte < 0x80; ++byte) {
        table[byte] = byte != '"' && byte != '\\';
    }
    return table;
}();

/// A character that cannot stand for itself.
void writeEscaped(OutputFile &file, char character) {
    switch (character) {
    case '"':
        return file.write("\\\"");
    case '\\':
        return file.write("\\\\");
    case '\b':
        return file.write("\\b");
    case '\f':
        return file.write("\\f");
    case '\n':
        return file.write("\\n");
    case '\r':
        return file.write("\\r");
    case '\t':
        return file.write("\\t");
    default:
        break;
    }
    constexpr std::string_view digits = "0123456789abcdef";
    const auto byte = static_cast<unsigned char>(character);
    const std::array<char, 6> escaped = {
        '\\', 'u', '0', '0', digits[byte >> 4], digits[byte & 0x0F]};
    file.write({escaped.data(), escaped.size()});
}

} // namespace

char *JSONText::writeReal(char *out, double value) noexcept {
    return writeRealText(out, value);
}

void JSONText::integer(std::int64_t value) {
    file_.commit(writeInteger(file_.reserve(maxIntegerText), value));
}

void JSONText::real(double value) {
    file_.commit(writeRealText(file_.reserve(maxRealText), value));
}

void JSONText::real(float value) {
    file_.commit(writeRealText(file_.reserve(maxRealText), value));
}

void JSONText::string(std::string_view text) {
    constexpr std::string_view replacement = "\xEF\xBF\xBD"; // U+FFFD
    raw("\"");
    std::size_t start = 0; // of what stands for itself and has not been written yet
    std::size_t position = 0;
    while (position < text.size()) {
        const auto byte = static_cast<unsigned char>(text[position]);
        if (standsForItself[byte]) {
            ++position;
            continue;
        }
        if (byte >= 0x80) {
            if (const std::size_t length = wellFormedCharacterLength(text.substr(position))) {
                position += length;
                continue;
            }
        }
        raw(text.substr(start, position - start));
        if (byte >= 0x80) {
            raw(replacement);
        } else {
            writeEscaped(file_, text[position]);
        }
        start = ++position;
    }
    raw(text.substr(start));
    raw("\"");
}

} // namespace pelluvia
