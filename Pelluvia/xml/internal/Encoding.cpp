// SPDX-License-Identifier: MIT

#include <Pelluvia/xml/internal/Encoding.h>

#include <Pelluvia/xml/XMLErrors.h>

#include <algorithm>
#include <array>
#include <cerrno>

namespace pelluvia::xml {

using namespace std::string_view_literals;

namespace {

struct Pattern {
    std::string_view bytes;
    const char *encoding;
};

// UTF-32 before UTF-16, whose little-endian mark begins alike.
constexpr std::array marks = {
    Pattern{"\xEF\xBB\xBF"sv, ""},         Pattern{"\xFF\xFE\0\0"sv, "UTF-32LE"},
    Pattern{"\0\0\xFE\xFF"sv, "UTF-32BE"}, Pattern{"\xFF\xFE"sv, "UTF-16LE"},
    Pattern{"\xFE\xFF"sv, "UTF-16BE"},
};

// `<` or `<?` without a mark.
constexpr std::array openings = {
    Pattern{"<\0\0\0"sv, "UTF-32LE"},
    Pattern{"\0\0\0<"sv, "UTF-32BE"},
    Pattern{"<\0?\0"sv, "UTF-16LE"},
    Pattern{"\0<\0?"sv, "UTF-16BE"},
};

// `<?xm` in EBCDIC; all its variants agree on the characters of a declaration.
constexpr std::string_view ebcdicOpening = "\x4C\x6F\xA7\x94";
constexpr const char *ebcdic = "IBM037";

bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool isEncodingName(std::string_view name) {
    const auto isLetter = [](char c) { return lower(c) >= 'a' && lower(c) <= 'z'; };
    const auto isPart = [&](char c) {
        return isLetter(c) || (c >= '0' && c <= '9') || c == '.' || c == '_' || c == '-';
    };
    return !name.empty() && isLetter(name.front()) && std::all_of(name.begin(), name.end(), isPart);
}

/// The declared name, as a part of `text`; empty when there is none or it is no name (which the
/// parser then reports).
std::string_view declaredName(std::string_view text) {
    if (!text.starts_with("<?xml") || text.size() < 6 || !isBlank(text[5])) {
        return {};
    }
    text = text.substr(0, text.find('>'));
    constexpr std::string_view key = "encoding";
    std::size_t at = text.find(key);
    while (at != std::string_view::npos && !isBlank(text[at - 1])) {
        at = text.find(key, at + 1);
    }
    const auto skipBlanks = [&] {
        while (at < text.size() && isBlank(text[at])) {
            ++at;
        }
    };
    if (at == std::string_view::npos) {
        return {};
    }
    at += key.size();
    skipBlanks();
    if (at >= text.size() || text[at] != '=') {
        return {};
    }
    ++at;
    skipBlanks();
    if (at >= text.size() || (text[at] != '"' && text[at] != '\'')) {
        return {};
    }
    const std::size_t end = text.find(text[at], at + 1);
    if (end == std::string_view::npos) {
        return {};
    }
    const std::string_view name = text.substr(at + 1, end - at - 1);
    return isEncodingName(name) ? name : std::string_view();
}

/// The place behind a text that starts a document.
Position positionAfter(std::string_view text) {
    const std::size_t lineStart = text.rfind('\n') + 1;
    return {std::count(text.begin(), text.end(), '\n') + 1,
            static_cast<std::int64_t>(text.size() - lineStart) + 1};
}

/// Fills in what the declaration says about a text that reads as ASCII so far.
void applyDeclaration(Encoding &encoding, std::string_view text) {
    const std::string_view name = declaredName(text);
    if (name.empty()) {
        return;
    }
    const auto end = static_cast<std::size_t>(name.data() - text.data()) + name.size();
    encoding.position = positionAfter(text.substr(0, end + 1));
    std::string folded(name);
    std::transform(folded.begin(), folded.end(), folded.begin(), lower);
    if (folded == "utf-8" || folded == "utf8") {
        return;
    }
    for (const std::string_view wide :
         {"utf-16"sv, "utf16"sv, "utf-32"sv, "utf32"sv, "ucs-2"sv, "ucs-4"sv, "iso-10646-ucs"sv}) {
        if (folded.starts_with(wide)) {
            encoding.failure =
                Failure{xmlErrors::contradictedEncoding,
                        "Document labelled " + std::string(name) + " but has UTF-8 content"};
            return;
        }
    }
    encoding.name = name;
}

} // namespace

Encoding detectEncoding(std::string_view start) {
    Encoding encoding;
    for (const Pattern &mark : marks) {
        if (start.starts_with(mark.bytes)) {
            encoding.name = mark.encoding;
            encoding.markSize = mark.bytes.size();
            return encoding;
        }
    }
    for (const Pattern &opening : openings) {
        if (start.starts_with(opening.bytes)) {
            encoding.name = opening.encoding;
            return encoding;
        }
    }
    if (!start.starts_with(ebcdicOpening)) {
        applyDeclaration(encoding, start);
        return encoding;
    }
    std::array<char, 512> text{};
    std::size_t size = 0;
    std::string_view rest = start.substr(0, 256);
    if (auto converter = Converter::open(ebcdic)) {
        static_cast<void>(converter->convert(rest, text.data(), text.size(), size));
    }
    applyDeclaration(encoding, std::string_view(text.data(), size));
    if (encoding.name.empty()) {
        encoding.name = ebcdic;
    }
    return encoding;
}

iconv_t Converter::closed() noexcept {
    return reinterpret_cast<iconv_t>(-1); // NOLINT(performance-no-int-to-ptr): POSIX's "none"
}

std::optional<Converter> Converter::open(const std::string &encoding) {
    const iconv_t handle = ::iconv_open("UTF-8", encoding.c_str());
    if (handle == closed()) {
        return std::nullopt;
    }
    return Converter(handle);
}

Converter::~Converter() {
    if (handle_ != closed()) {
        ::iconv_close(handle_);
    }
}

namespace {

Converter::Outcome outcome(std::size_t result) {
    if (result != static_cast<std::size_t>(-1)) {
        return Converter::Outcome::done;
    }
    if (errno == E2BIG) {
        return Converter::Outcome::full;
    }
    return errno == EINVAL ? Converter::Outcome::incomplete : Converter::Outcome::invalid;
}

} // namespace

Converter::Outcome Converter::convert(std::string_view &from, char *to, std::size_t room,
                                      std::size_t &size) {
    char *in = const_cast<char *>(from.data()); // iconv does not write to its input
    std::size_t inLeft = from.size();
    char *out = to + size;
    std::size_t outLeft = room - size;
    const std::size_t result = ::iconv(handle_, &in, &inLeft, &out, &outLeft);
    const Outcome what = outcome(result);
    from.remove_prefix(from.size() - inLeft);
    size = room - outLeft;
    return what;
}

Converter::Outcome Converter::finish(char *to, std::size_t room, std::size_t &size) {
    char *out = to + size;
    std::size_t outLeft = room - size;
    const Outcome what = outcome(::iconv(handle_, nullptr, nullptr, &out, &outLeft));
    size = room - outLeft;
    return what;
}

} // namespace pelluvia::xml
