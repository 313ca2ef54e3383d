#include <tools/pelluvia/terminal/Messages.h>

#include <unistd.h>

namespace pelluvia::host {

namespace {

bool isControl(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte < 0x20 || byte == 0x7F;
}

/// Whether the text begins with one of U+0080 to U+009F, the second set of control characters.
bool startsWithSecondSetControl(std::string_view text) {
    return text.size() >= 2 && text[0] == '\xC2' && static_cast<unsigned char>(text[1]) >= 0x80 &&
           static_cast<unsigned char>(text[1]) < 0xA0;
}

} // namespace

std::string harmless(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const bool isWide = startsWithSecondSetControl(text);
        result += isWide || isControl(text.front()) ? '?' : text.front();
        text.remove_prefix(isWide ? 2 : 1);
    }
    return result;
}

void say(std::string_view text) {
    // One call, so that lines of several processes do not mix. Nothing helps when it fails.
    const std::string line = harmless(text) + '\n';
    [[maybe_unused]] const ssize_t written = ::write(STDERR_FILENO, line.data(), line.size());
}

void complain(std::string_view text) {
    say("pelluvia: " + std::string(text));
}

std::string sourceName(const std::string &path) {
    return path == "-" ? "standard input" : path;
}

std::string targetName(const std::string &path) {
    return path == "-" ? "standard output" : path;
}

} // namespace pelluvia::host
