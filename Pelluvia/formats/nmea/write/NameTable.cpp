// SPDX-License-Identifier: MIT

#include <Pelluvia/formats/nmea/write/NameTable.h>

#include <algorithm>
#include <utility>

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
    const std::string name = safeName(wanted);
    if (name.empty()) {
        const Beginning generated{.base = stem_, .separator = "", .firstNumber = 1};
        return isFull() ? beyond(generated) : numbered(generated, identity);
    }
    ++lookups_;
    const auto found = identities_.find(name);
    if (found != identities_.end() && found->second == identity) {
        return {.name = name, .isNew = false};
    }
    // The name may end in a digit. The one without a number is the first.
    const Beginning named{.base = name, .separator = "-", .firstNumber = 2};
    if (isFull()) {
        return beyond(named);
    }
    if (found != identities_.end()) {
        return numbered(named, identity);
    }
    identities_.emplace(name, identity);
    return {.name = name, .isNew = true};
}

/// The beginning, cut as far as needed, and the number.
std::string NameTable::join(const Beginning &beginning, std::size_t number) {
    const std::string digits = std::to_string(number);
    const std::size_t suffix = beginning.separator.size() + digits.size();
    return std::string(beginning.base.substr(0, longestName - suffix))
        .append(beginning.separator)
        .append(digits);
}

NameTable::Entry NameTable::numbered(const Beginning &beginning, std::string_view identity) {
    // How far the beginning is cut depends on the count of digits only.
    std::size_t first = beginning.firstNumber;
    std::size_t end = 10;
    for (std::size_t digits = 1;; ++digits, first = end, end *= 10) {
        std::string cut = join(beginning, first);
        cut.resize(cut.size() - digits);
        std::size_t &last =
            lastNumbers_.try_emplace({std::move(cut), digits}, first - 1).first->second;
        while (last + 1 < end) {
            ++lookups_;
            const auto [found, isNew] = identities_.try_emplace(join(beginning, ++last), identity);
            if (isNew) {
                return {.name = found->first, .isNew = true};
            }
        }
    }
}

/// A number that no other name has: there is no name to remember then.
NameTable::Entry NameTable::beyond(const Beginning &beginning) {
    for (;;) {
        ++lookups_;
        std::string name = join(beginning, most_ + ++lastBeyond_);
        if (!identities_.contains(name)) {
            return {.name = std::move(name), .isNew = true, .isBeyond = true};
        }
    }
}

} // namespace pelluvia::nmea
