// SPDX-License-Identifier: MIT

#include <Pelluvia/storage/internal/DefaultsText.h>

#include <Pelluvia/storage/internal/Base64.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <system_error>
#include <utility>

namespace pelluvia::storage {

namespace {

constexpr std::string_view group = "[Defaults]";
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view hexDigits = "0123456789ABCDEF";

/// Whether a byte stands for itself in keys and texts. The others have a meaning in the file, are
/// not ASCII, or are the escape.
bool isPlain(char c) {
    return c > ' ' && c < '\x7F' && std::string_view("%=[]#;\\").find(c) == std::string_view::npos;
}

std::string escaped(std::string_view bytes) {
    std::string result;
    result.reserve(bytes.size());
    for (const char c : bytes) {
        if (isPlain(c)) {
            result += c;
        } else {
            const auto byte = static_cast<unsigned char>(c);
            ((result += '%') += hexDigits[byte >> 4U]) += hexDigits[byte & 0xFU];
        }
    }
    return result;
}

/// Nothing where a % is not followed by two digits.
std::optional<std::string> unescaped(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] != '%') {
            result += text[at];
            continue;
        }
        const std::string_view digits = text.substr(at + 1, 2);
        unsigned byte = 0;
        const auto [end, error] =
            std::from_chars(digits.data(), digits.data() + digits.size(), byte, 16);
        if (error != std::errc() || end != digits.data() + 2) {
            return std::nullopt;
        }
        result += static_cast<char>(byte);
        at += 2;
    }
    return result;
}

// A name in the file must not be empty.
constexpr std::string_view nameOfTheEmptyKey = "%";

std::string nameOf(std::string_view key) {
    return key.empty() ? std::string(nameOfTheEmptyKey) : escaped(key);
}

/// Nothing for what is no name.
std::optional<std::string> keyOf(std::string_view name) {
    if (name == nameOfTheEmptyKey) {
        return std::string();
    }
    return name.empty() ? std::nullopt : unescaped(name);
}

std::string_view withoutBlanks(std::string_view text) {
    constexpr std::string_view blanks = " \t\r\v\f";
    const std::size_t first = text.find_first_not_of(blanks);
    return first == std::string_view::npos
               ? std::string_view()
               : text.substr(first, text.find_last_not_of(blanks) + 1 - first);
}

template <class Number>
std::optional<Number> numberOf(std::string_view text) {
    Number number{};
    const char *const last = text.data() + text.size();
    const auto [end, error] = std::from_chars(text.data(), last, number);
    return error == std::errc() && end == last ? std::optional(number) : std::nullopt;
}

template <class Number>
std::string textOf(Number number) {
    std::array<char, 40> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    return {digits.data(), end};
}

// How the types are called in the file.
constexpr std::string_view dataMark = "data:";
constexpr std::string_view stringMark = "string:";
constexpr std::string_view integerMark = "integer:";
constexpr std::string_view realMark = "real:";

struct Encoder {
    std::string operator()(const Data &data) const {
        return std::string(dataMark) + base64Of(data);
    }
    std::string operator()(const std::string &text) const {
        return std::string(stringMark) + escaped(text);
    }
    std::string operator()(std::int64_t number) const {
        return std::string(integerMark) + textOf(number);
    }
    std::string operator()(double number) const { return std::string(realMark) + textOf(number); }
};

/// The mark of the value's type, or nothing where there is none that is known.
std::string_view markOf(std::string_view value) {
    for (const std::string_view mark : {dataMark, stringMark, integerMark, realMark}) {
        if (value.starts_with(mark)) {
            return mark;
        }
    }
    return {};
}

std::optional<DefaultsObject> decoded(std::string_view value) {
    const std::string_view mark = markOf(value);
    const std::string_view rest = value.substr(mark.size());
    if (mark == dataMark) {
        return bytesOfBase64(rest);
    }
    if (mark == stringMark) {
        return unescaped(rest);
    }
    if (mark == integerMark) {
        return numberOf<std::int64_t>(rest);
    }
    if (mark == realMark) {
        return numberOf<double>(rest);
    }
    return std::nullopt;
}

std::string_view valueIn(std::string_view line) {
    return withoutBlanks(line.substr(line.find('=') + 1));
}

} // namespace

DefaultsText DefaultsText::parsed(std::string_view text) {
    DefaultsText result;
    if (text.starts_with(byteOrderMark)) {
        text.remove_prefix(byteOrderMark.size());
    }
    bool isInOurGroup = true;
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find('\n'));
        result.add(line, isInOurGroup);
        text.remove_prefix(std::min(line.size() + 1, text.size()));
    }
    return result;
}

void DefaultsText::add(std::string_view text, bool &isInOurGroup) {
    ++lineCount_;
    const std::string_view line = withoutBlanks(text);
    const bool isComment = line.empty() || line.front() == '#' || line.front() == ';';
    const bool isGroup = line.starts_with('[');
    if (text.find('\0') != std::string_view::npos) {
        // After a loss of power a file may be all NULs.
        addBadLine();
    } else if (isComment || (!isInOurGroup && !isGroup)) {
        keep(Kind::AsItStands, text);
    } else if (isGroup) {
        const bool isWhole = line.find_first_of("[]", 1) == line.size() - 1 && line.back() == ']';
        isInOurGroup = !isWhole || line == group;
        if (isWhole) {
            keep(isInOurGroup ? Kind::OurGroup : Kind::OtherGroup, text);
        } else {
            addBadLine();
        }
    } else {
        const std::size_t equals = line.find('=');
        auto key = keyOf(withoutBlanks(line.substr(0, equals)));
        const std::string_view value = valueIn(line);
        const bool isUnderstood = markOf(value).empty() || decoded(value).has_value();
        if (equals != std::string_view::npos && key && isUnderstood) {
            keep(Kind::Entry, text, std::move(*key));
        } else {
            addBadLine();
        }
    }
}

void DefaultsText::addBadLine() noexcept {
    firstBadLine_ = badLineCount_ == 0 ? lineCount_ : firstBadLine_;
    ++badLineCount_;
}

void DefaultsText::keep(Kind kind, std::string_view text, std::string key) {
    // Many such lines are one, so that they cost no more memory than they are long.
    if (kind == Kind::AsItStands && !lines_.empty() && lines_.back().kind == kind) {
        (lines_.back().text += '\n') += text;
    } else {
        lines_.push_back({kind, std::string(text), std::move(key)});
    }
}

std::optional<std::size_t> DefaultsText::entryOf(std::string_view key) const {
    for (std::size_t at = lines_.size(); at > 0; --at) {
        if (lines_[at - 1].kind == Kind::Entry && lines_[at - 1].key == key) {
            return at - 1;
        }
    }
    return std::nullopt;
}

std::optional<DefaultsObject> DefaultsText::find(std::string_view key) const {
    const auto at = entryOf(key);
    return at ? decoded(valueIn(lines_[*at].text)) : std::nullopt;
}

void DefaultsText::set(std::string_view key, const DefaultsObject &object) {
    Line line{Kind::Entry, nameOf(key) + "=" + std::visit(Encoder(), object), std::string(key)};
    if (const auto at = entryOf(key)) {
        lines_[*at] = std::move(line);
        return;
    }
    // Behind the last entry, or where entries would stand, or at the end.
    const auto last = std::find_if(lines_.rbegin(), lines_.rend(), [](const Line &each) {
        return each.kind == Kind::Entry || each.kind == Kind::OurGroup;
    });
    lines_.insert(last != lines_.rend() ? last.base() : lines_.end(), std::move(line));
}

void DefaultsText::remove(std::string_view key) {
    std::erase_if(lines_,
                  [key](const Line &line) { return line.kind == Kind::Entry && line.key == key; });
}

std::string DefaultsText::text() const {
    std::string text;
    bool isInOurGroup = false;
    for (const Line &line : lines_) {
        if (line.kind == Kind::Entry && !isInOurGroup) {
            (text += group) += '\n';
        }
        if (line.kind != Kind::AsItStands) {
            isInOurGroup = line.kind != Kind::OtherGroup;
        }
        (text += line.text) += '\n';
    }
    return text;
}

} // namespace pelluvia::storage
