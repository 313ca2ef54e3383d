// SPDX-License-Identifier: MIT

#include <Pelluvia/xml/internal/scan/Asides.h>
#include <Pelluvia/xml/internal/scan/Bytes.h>
#include <Pelluvia/xml/internal/scan/Characters.h>

#include <algorithm>
#include <cstddef>
#include <iterator>

namespace pelluvia::xml::scan {

namespace {

constexpr std::string_view declarationOpening = "<?xml";
constexpr std::string_view commentOpening = "<!--";
constexpr std::string_view instructionOpening = "<?";
constexpr std::string_view cdataOpening = "<![CDATA[";

/// A longer instruction is not read here, for the library may overlook its end: it looks for that
/// in what it happens to hold.
constexpr std::ptrdiff_t longestInstruction = 200;

/// The longest character in bytes.
constexpr std::ptrdiff_t longestCharacter = 4;

/// The place of the first `closing` at or behind `at`, over characters of any kind.
Look find(std::string_view closing, const char *at, const char *end, const char *&found) noexcept {
    while (true) {
        if (*at == closing.front()) {
            const Look look = begins(at, end, closing);
            if (look != Look::refused) {
                found = at;
                return look;
            }
            ++at;
        } else if (isMultibyte(*at)) {
            const char *const next = skipMultibyte(at);
            if (next == at) {
                return end - at < longestCharacter ? Look::cutOff : Look::refused;
            }
            at = next;
        } else if (static_cast<unsigned char>(*at) >= 0x20 || is(blank, *at)) {
            ++at;
        } else {
            return at == end ? Look::cutOff : Look::refused;
        }
    }
}

bool isBetween(char c, char first, char last) noexcept {
    return c >= first && c <= last;
}

/// Moves over the text if it is there.
bool take(const char *&at, const char *end, std::string_view text) noexcept {
    const bool isThere = begins(at, end, text) == Look::complete;
    at += isThere ? text.size() : 0;
    return isThere;
}

/// Moves over white space, if any, ` name = "value"`, and gives the value; false when it is not
/// there or goes on behind `end`.
bool takePseudoAttribute(const char *&at, const char *end, std::string_view name,
                         std::string_view &value) noexcept {
    const char *next = skip(blank, at);
    if (next == at || !take(next, end, name)) {
        return false;
    }
    next = skip(blank, next);
    if (*next != '=') {
        return false;
    }
    next = skip(blank, next + 1);
    const char quote = *next;
    if (quote != '"' && quote != '\'') {
        return false;
    }
    const char *const begin = next + 1;
    const char *const close = std::find(begin, end, quote);
    if (close == end) {
        return false;
    }
    value = std::string_view(begin, static_cast<std::size_t>(close - begin));
    at = close + 1;
    return true;
}

bool isEncodingName(std::string_view name) noexcept {
    return !name.empty() && is(nameStart, name.front()) && name.front() != '_' &&
           std::all_of(name.begin(), name.end(), [](char c) { return is(nameByte, c); });
}

bool isXML(std::string_view name) noexcept {
    const auto lower = [](char c) {
        return isBetween(c, 'A', 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
    };
    return name.size() == 3 && lower(name[0]) == 'x' && lower(name[1]) == 'm' &&
           lower(name[2]) == 'l';
}

} // namespace

Look begins(const char *at, const char *end, std::string_view opening) noexcept {
    const auto size = std::min(opening.size(), static_cast<std::size_t>(end - at));
    if (opening.substr(0, size) != std::string_view(at, size)) {
        return Look::refused;
    }
    return size == opening.size() ? Look::complete : Look::cutOff;
}

Look readXMLDeclaration(const char *at, const char *end, const char *&after) noexcept {
    std::string_view value;
    if (!take(at, end, declarationOpening) || !takePseudoAttribute(at, end, "version", value) ||
        value != "1.0") {
        return Look::refused;
    }
    if (takePseudoAttribute(at, end, "encoding", value) && !isEncodingName(value)) {
        return Look::refused;
    }
    if (takePseudoAttribute(at, end, "standalone", value) && value != "yes" && value != "no") {
        return Look::refused;
    }
    after = skip(blank, at);
    return take(after, end, "?>") ? Look::complete : Look::refused;
}

Look readComment(const char *at, const char *end, const char *&after) noexcept {
    const char *close = nullptr;
    const Look look = find("--", at + commentOpening.size(), end, close);
    if (look != Look::complete) {
        return look;
    }
    after = close + 3;
    return begins(close, end, "-->");
}

Look readInstruction(const char *at, const char *end, const char *&after) noexcept {
    const char *const begin = at;
    at += instructionOpening.size();
    QualifiedName target;
    if (!readName(at, target)) {
        return at == end ? Look::cutOff : Look::refused;
    }
    if (!target.prefix.empty() || isXML(target.whole)) {
        return Look::refused;
    }
    const char *close = nullptr;
    const Look look = is(blank, *at) ? find("?>", at, end, close) : begins(close = at, end, "?>");
    if (look != Look::complete) {
        return look;
    }
    after = close + 2;
    return after - begin <= longestInstruction ? Look::complete : Look::refused;
}

Look readCDATA(const char *at, const char *end, std::string_view &text,
               const char *&after) noexcept {
    at += cdataOpening.size();
    const char *close = nullptr;
    const Look look = find("]]>", at, end, close);
    if (look == Look::complete) {
        text = std::string_view(at, static_cast<std::size_t>(close - at));
        after = close + 3;
    }
    return look;
}

} // namespace pelluvia::xml::scan
