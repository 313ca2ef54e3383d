// SPDX-License-Identifier: MIT

#include <Pelluvia/xml/internal/scan/Bytes.h>
#include <Pelluvia/xml/internal/scan/Characters.h>
#include <Pelluvia/xml/internal/scan/StartTag.h>

#include <algorithm>

namespace pelluvia::xml::scan {

namespace {

/// What a look is worth that ends where it could not go on.
Look stopped(const char *at, const char *end) noexcept {
    return at == end ? Look::cutOff : Look::refused;
}

std::string_view between(const char *begin, const char *end) noexcept {
    return {begin, static_cast<std::size_t>(end - begin)};
}

bool readPart(const char *&at) noexcept {
    if (!is(nameStart, *at)) {
        return false;
    }
    at = skip(nameByte, at);
    return true;
}

/// Finds the end of the value that begins at `at`; false where it may not go on.
bool readValue(char *&at, char quote, bool &isPlain) noexcept {
    while (true) {
        at += findSpecial<plainValue>(at) - at;
        if (*at == quote) {
            return true;
        }
        if (*at == '"' || *at == '\'') {
            ++at;
            continue;
        }
        isPlain = false;
        const char *next = at;
        if (*at == '&') {
            if (readReference(next).size == 0) {
                return false;
            }
        } else if (isMultibyte(*at)) {
            next = skipMultibyte(at);
        } else {
            next = skip(blank, at);
        }
        if (next == at) {
            return false;
        }
        at += next - at;
    }
}

/// Reads `name="value"` and moves behind it.
Look readAttribute(char *&at, const char *end, StartTag::Attribute &attribute) noexcept {
    const char *next = at;
    if (!readName(next, attribute.name)) {
        return stopped(next, end);
    }
    next = skip(blank, next);
    if (*next != '=') {
        return stopped(next, end);
    }
    next = skip(blank, next + 1);
    const char quote = *next;
    if (quote != '"' && quote != '\'') {
        return stopped(next, end);
    }
    at += next + 1 - at;
    attribute.begin = at;
    if (!readValue(at, quote, attribute.isPlain)) {
        // A reference or character that is not complete looks wrong; near the end, see more first.
        const bool mayBeCut = end - at < static_cast<std::ptrdiff_t>(longestReference);
        return mayBeCut ? Look::cutOff : Look::refused;
    }
    attribute.end = at++;
    return Look::complete;
}

/// Two attributes of one name are an error, and so are two that come to the same name when their
/// prefixes are resolved: where that could be, others may find out.
bool mayCollide(const StartTag::Attribute &one, const StartTag::Attribute &other) noexcept {
    return one.name.local == other.name.local &&
           (one.name.prefix.empty() == other.name.prefix.empty());
}

/// One of 64 kinds of names, as a bit: names of different kinds differ.
std::uint64_t kindOf(std::string_view name) noexcept {
    const auto first = static_cast<unsigned char>(name.front());
    const auto last = static_cast<unsigned char>(name.back());
    return std::uint64_t{1} << ((first + 7U * last + 31U * name.size()) % 64);
}

bool add(StartTag::Attribute attribute, StartTag &tag) {
    const bool declares = attribute.name.prefix == "xmlns" || attribute.name.whole == "xmlns";
    auto &list = declares ? tag.declarations : tag.attributes;
    const auto collides = [&](const StartTag::Attribute &each) {
        return mayCollide(each, attribute);
    };
    const std::uint64_t kind = kindOf(attribute.name.local);
    const bool mayBeThere = (tag.kinds & kind) != 0;
    if (list.size() == StartTag::mostAttributes ||
        (mayBeThere && std::any_of(list.begin(), list.end(), collides))) {
        return false;
    }
    tag.kinds |= kind;
    list.push_back(attribute);
    return true;
}

} // namespace

bool readName(const char *&at, QualifiedName &name) noexcept {
    const char *const begin = at;
    if (!readPart(at)) {
        return false;
    }
    name.prefix = {};
    name.local = between(begin, at);
    if (*at == ':') {
        name.prefix = name.local;
        const char *const local = ++at;
        if (!readPart(at)) {
            return false;
        }
        name.local = between(local, at);
    }
    name.whole = between(begin, at);
    return *at != ':' && !isMultibyte(*at) && name.whole.size() <= QualifiedName::longest;
}

Look readStartTag(char *at, const char *end, StartTag &tag) {
    tag.attributes.clear();
    tag.declarations.clear();
    tag.kinds = 0;
    const char *next = at + 1;
    if (!readName(next, tag.name)) {
        return stopped(next, end);
    }
    at += next - at;
    while (true) {
        const char *const gap = at;
        at += skip(blank, at) - at;
        if (*at == '>' || *at == '/') {
            break;
        }
        StartTag::Attribute attribute;
        const Look look = at == gap ? stopped(at, end) : readAttribute(at, end, attribute);
        if (look != Look::complete) {
            return look;
        }
        if (!add(attribute, tag)) {
            return Look::refused;
        }
    }
    tag.close = at;
    tag.isEmpty = *at == '/';
    at += tag.isEmpty ? 1 : 0;
    if (*at != '>') {
        return stopped(at, end);
    }
    tag.end = at + 1;
    return Look::complete;
}

void normalise(StartTag::Attribute &attribute) noexcept {
    char *to = attribute.begin;
    for (const char *from = attribute.begin; from != attribute.end;) {
        if (*from == '&') {
            const Character character = readReference(from);
            to = std::copy_n(character.bytes, character.size, to);
        } else {
            *to++ = is(blank, *from) ? ' ' : *from;
            ++from;
        }
    }
    attribute.end = to;
}

Look readEndTag(const char *at, const char *end, std::string_view name,
                const char *&tagEnd) noexcept {
    at += 2; // </
    for (const char c : name) {
        if (*at != c) {
            return stopped(at, end);
        }
        ++at;
    }
    at = skip(blank, at);
    if (*at != '>') {
        return stopped(at, end);
    }
    tagEnd = at + 1;
    return Look::complete;
}

} // namespace pelluvia::xml::scan
