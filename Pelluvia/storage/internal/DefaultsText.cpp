#include <Pelluvia/storage/internal/DefaultsText.h>

#include <array>
#include <charconv>
#include <system_error>

namespace pelluvia::storage {

namespace {

constexpr const char *group = "Defaults";
constexpr std::string_view hexDigits = "0123456789ABCDEF";

/// Whether a byte stands for itself in keys and texts. The others have a meaning in key files, are
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

/// A name in the key file; it must not be empty.
std::string nameOf(std::string_view key) {
    return key.empty() ? "%" : escaped(key);
}

std::optional<Data> bytesOf(const std::string &base64) {
    gsize size = 0;
    const GMemory<guchar> bytes(g_base64_decode(base64.c_str(), &size));
    // Decoding passes over what is not base64; what does not encode to the same text was damaged.
    const GMemory<gchar> again(g_base64_encode(bytes.get(), size));
    if (base64 != again.get()) {
        return std::nullopt;
    }
    return Data(bytes.get(), bytes.get() + size);
}

template <class Number>
std::optional<Number> numberOf(const std::string &text) {
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
        const GMemory<gchar> base64(g_base64_encode(data.data(), data.size()));
        return std::string(dataMark) + base64.get();
    }
    std::string operator()(const std::string &text) const {
        return std::string(stringMark) + escaped(text);
    }
    std::string operator()(std::int64_t number) const {
        return std::string(integerMark) + textOf(number);
    }
    std::string operator()(double number) const { return std::string(realMark) + textOf(number); }
};

std::optional<DefaultsObject> decoded(std::string_view value) {
    const std::string_view mark = value.substr(0, value.find(':') + 1);
    const std::string rest(value.substr(mark.size()));
    if (mark == dataMark) {
        return bytesOf(rest);
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

} // namespace

DefaultsText::DefaultsText() : file_(g_key_file_new()) {}

std::optional<DefaultsText> DefaultsText::parsed(std::string_view text) {
    DefaultsText result;
    if (text.empty()) {
        return result;
    }
    // A user's own groups may have texts of languages that are not this process's.
    constexpr auto keepAll =
        static_cast<GKeyFileFlags>(G_KEY_FILE_KEEP_COMMENTS | G_KEY_FILE_KEEP_TRANSLATIONS);
    // After a loss of power a file may be all NULs, which the parser takes for empty lines.
    if (text.find('\0') != std::string_view::npos ||
        g_key_file_load_from_data(result.file_.get(), text.data(), text.size(), keepAll, nullptr) ==
            FALSE ||
        g_key_file_has_group(result.file_.get(), group) == FALSE) {
        return std::nullopt;
    }
    return result;
}

std::optional<DefaultsObject> DefaultsText::find(std::string_view key) const {
    const GMemory<gchar> value(
        g_key_file_get_value(file_.get(), group, nameOf(key).c_str(), nullptr));
    return value != nullptr ? decoded(value.get()) : std::nullopt;
}

void DefaultsText::set(std::string_view key, const DefaultsObject &object) {
    g_key_file_set_value(file_.get(), group, nameOf(key).c_str(),
                         std::visit(Encoder(), object).c_str());
}

void DefaultsText::remove(std::string_view key) {
    g_key_file_remove_key(file_.get(), group, nameOf(key).c_str(), nullptr);
}

std::string DefaultsText::text() const {
    gsize size = 0;
    const GMemory<gchar> text(g_key_file_to_data(file_.get(), &size, nullptr));
    return {text.get(), size};
}

} // namespace pelluvia::storage
