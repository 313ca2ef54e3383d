// SPDX-License-Identifier: MIT

#include <tools/pelluvia/commandline/OptionValues.h>

#include <Pelluvia/values/Number.h>

#include <CLI/CLI.hpp>

#include <charconv>
#include <cmath>
#include <limits>
#include <string_view>

namespace pelluvia::host {

namespace {

/// The number that is the whole text.
template <class Number>
std::optional<Number> read(const std::string &text) {
    Number value{};
    const char *end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    return error == std::errc() && stop == end ? std::optional(value) : std::nullopt;
}

} // namespace

void refuseMissingValues(std::span<const char *const> words) {
    for (const std::string_view word : words) {
        if (word == "--") {
            return; // files behind it may have any name
        }
        if (word.starts_with("--") && word.find('=') == word.size() - 1) {
            throw CLI::ValidationError(std::string(word), "nothing stands behind the =");
        }
    }
}

std::int64_t wholeNumberOf(const std::optional<std::string> &text, const char *option,
                           std::int64_t standard) {
    if (!text) {
        return standard;
    }
    const auto value = read<std::int64_t>(*text);
    if (!value || *value < 0) {
        const auto largest = std::to_string(std::numeric_limits<std::int64_t>::max());
        throw CLI::ValidationError(option, "a whole number from 0 to " + largest + " is needed");
    }
    return *value;
}

std::optional<float> toleranceOf(const std::optional<std::string> &text, const char *option) {
    if (!text) {
        return std::nullopt;
    }
    const auto value = read<double>(*text);
    // The sign is that of the text: as a float, a tiny negative number is no longer below 0.
    if (!value || *value < 0.0 || !std::isfinite(roundedFloat(*value))) {
        throw CLI::ValidationError(option, "a number from 0 to 3.4e38 is needed");
    }
    return roundedFloat(*value);
}

Selection selectionOf(const std::string &list) {
    Selection only{.tracks = false, .routes = false, .waypoints = false};
    std::string_view rest = list;
    for (bool isLast = false; !isLast;) {
        const std::size_t comma = rest.find(',');
        const std::string kind(rest.substr(0, comma));
        isLast = comma == std::string_view::npos;
        rest.remove_prefix(isLast ? rest.size() : comma + 1);
        bool *chosen = kind == "tracks"      ? &only.tracks
                       : kind == "routes"    ? &only.routes
                       : kind == "waypoints" ? &only.waypoints
                                             : nullptr;
        if (chosen == nullptr) {
            throw CLI::ValidationError("--only",
                                       "\"" + kind + "\" is not one of tracks, routes, waypoints");
        }
        *chosen = true;
    }
    return only;
}

} // namespace pelluvia::host
