// SPDX-License-Identifier: MIT

#include <tools/pelluvia/terminal/Messages.h>

#include <tools/pelluvia/terminal/InterruptWatch.h>

#include <Pelluvia/text/UTF8.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <poll.h>
#include <unistd.h>

namespace pelluvia::host {

namespace {

/// Characters from one to another, both as UTF-8. Compared as bytes they have the order of their
/// numbers.
struct Range {
    std::string_view first;
    std::string_view last;
};

/// Characters that are no text to be read but act on the terminal: they give commands, or change
/// the direction of what follows, which can make a name look like another.
// NOLINTBEGIN(misc-misleading-bidirectional): they are named here so that they mislead nobody
constexpr auto acting = std::to_array<Range>({
    {std::string_view("\0", 1), "\x1F"},
    {"\x7F", "\x7F"},
    {"\xC2\x80", "\xC2\x9F"},         // U+0080 to U+009F, the second set of controls
    {"\xD8\x9C", "\xD8\x9C"},         // U+061C, Arabic letter mark
    {"\xE2\x80\x8E", "\xE2\x80\x8F"}, // U+200E and U+200F, marks of direction
    {"\xE2\x80\xAA", "\xE2\x80\xAE"}, // U+202A to U+202E, embeddings and overrides
    {"\xE2\x81\xA6", "\xE2\x81\xA9"}, // U+2066 to U+2069, isolates
});
// NOLINTEND(misc-misleading-bidirectional)

bool isActing(std::string_view character) {
    return std::any_of(acting.begin(), acting.end(), [character](const Range &range) {
        return range.first <= character && character <= range.last;
    });
}

std::string escaped(std::string_view bytes) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string result;
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        result.append("\\x").append(1, digits[byte / 16]).append(1, digits[byte % 16]);
    }
    return result;
}

/// Whether standard error takes a line now, or after at most so many milliseconds; not when a
/// signal comes before. (It takes one also where writing will fail.)
bool takesBytes(int milliseconds) {
    pollfd standardError = {STDERR_FILENO, POLLOUT, 0};
    const int ready = ::poll(&standardError, 1, milliseconds);
    return ready > 0 || (ready < 0 && errno != EINTR);
}

void writeToStandardError(std::string_view bytes) {
    [[maybe_unused]] const ssize_t written = ::write(STDERR_FILENO, bytes.data(), bytes.size());
}

} // namespace

std::string harmless(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const std::size_t length = wellFormedCharacterLength(text);
        const std::string_view character = text.substr(0, std::max<std::size_t>(length, 1));
        if (length == 0 || isActing(character)) {
            result += escaped(character);
        } else {
            result += character;
        }
        text.remove_prefix(character.size());
    }
    return result;
}

void say(std::string_view text) {
    // Who does not read is waited for, but not by a program that has been told to end.
    constexpr int forever = -1;
    constexpr int shortly = 100; // milliseconds
    while (!takesBytes(InterruptWatch::isInterrupted() ? shortly : forever)) {
        if (InterruptWatch::isInterrupted()) {
            return;
        }
    }
    // One call, so that lines of several processes do not mix. Nothing helps when it fails.
    writeToStandardError(harmless(text) + '\n');
}

void show(std::string_view bytes) {
    if (takesBytes(0)) {
        writeToStandardError(bytes);
    }
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
