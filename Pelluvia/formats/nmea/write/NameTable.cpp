#include <Pelluvia/formats/nmea/write/NameTable.h>

#include <algorithm>

namespace pelluvia::nmea {

namespace {

constexpr char replacement = '_';

/// A byte behind the first of a character in UTF-8.
bool isContinuation(char c) noexcept {
    return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U;
}

bool isSafe(char c) noexcept {
    constexpr std::string_view reserved = "$*,!\\^~";
    return c >= ' ' && c < '\x7F' && reserved.find(c) == std::string_view::npos;
}

std::string_view withoutSpaces(std::string_view text) noexcept {
    const std::size_t first = text.find_first_not_of(' ');
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

} // namespace

std::string safeName(std::string_view name) {
    std::string safe;
    for (const char c : name) {
        if (isSafe(c)) {
            safe.push_back(c);
        } else if (!isContinuation(c)) {
            safe.push_back(replacement);
        }
    }
    const std::string_view cut = withoutSpaces(withoutSpaces(safe).substr(0, longestName));
    const bool saysNothing =
        std::all_of(cut.begin(), cut.end(), [](char c) { return c == replacement || c == ' '; });
    return saysNothing ? std::string() : std::string(cut);
}

NameTable::Entry NameTable::nameFor(std::string_view wanted, std::string_view identity) {
    std::string name = safeName(wanted);
    const std::string base = name.empty() ? stem_ : name;
    const std::string separator = name.empty() ? "" : "-"; // the name may end in a digit
    if (!name.empty()) {
        const auto [found, isNew] = identities_.try_emplace(name, identity);
        if (isNew || found->second == identity) {
            return {std::move(name), isNew};
        }
        lastNumbers_.try_emplace(base, 1); // the one without a number
    }
    int &last = lastNumbers_[base];
    do {
        const std::string suffix = separator + std::to_string(++last);
        name = base.substr(0, longestName - suffix.size()) + suffix;
    } while (!identities_.try_emplace(name, identity).second);
    return {std::move(name), true};
}

} // namespace pelluvia::nmea
