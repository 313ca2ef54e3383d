// SPDX-License-Identifier: MIT

#include <tools/pelluvia/files/FileFormats.h>

#include <tools/pelluvia/files/SourceFile.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

namespace pelluvia::host {

namespace {

std::string lowered(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    return text;
}

/// How a format is called, and the endings of its files.
struct FormatName {
    std::string_view name;
    Format format;
    std::array<std::string_view, 2> endings;
};
constexpr std::array formatNames = {
    FormatName{"gpx", Format::GPX, {".gpx", {}}},
    FormatName{"calls", Format::Calls, {".jsonl", {}}},
    FormatName{"nmea", Format::NMEA, {".nmea", ".log"}},
};

bool hasEnding(const std::string &path, const FormatName &format) {
    const std::string name = lowered(path);
    return std::any_of(format.endings.begin(), format.endings.end(), [&](std::string_view ending) {
        return !ending.empty() && name.ends_with(ending);
    });
}

/// The format that an option names, or, when it names none, the ending of the path; or nothing.
std::optional<Format> namedFormat(const std::string &path, const std::string &chosen) {
    if (chosen.empty() && path == "-") {
        return Format::GPX;
    }
    for (const FormatName &each : formatNames) {
        if (chosen.empty() ? hasEnding(path, each) : chosen == each.name) {
            return each.format;
        }
    }
    return std::nullopt;
}

CLI::ValidationError unknownEnding(const std::string &path, const std::string &option) {
    return CLI::ValidationError(path,
                                "the ending is none of .gpx, .jsonl, .nmea and .log; name the "
                                "format with " +
                                    option + " gpx, " + option + " calls or " + option + " nmea");
}

} // namespace

Format sourceFormat(const std::string &path, const std::string &chosen) {
    if (const auto format = namedFormat(path, chosen)) {
        return *format;
    }
    // That a source is missing, or a folder, says more than its ending; the run will find it out.
    if (whyUnreadable(path)) {
        return Format::GPX;
    }
    if (lowered(path).ends_with(".gz")) {
        throw CLI::ValidationError(
            path, "packed files are not read; unpack it on the way: zcat FILE | pelluvia convert "
                  "[--from FORMAT] - TARGET");
    }
    throw unknownEnding(path, "--from");
}

Format shownFormat(const std::string &path, const std::string &chosen) {
    return namedFormat(path, chosen).value_or(Format::GPX);
}

Format targetFormat(const std::string &path, const std::string &chosen) {
    if (const auto format = namedFormat(path, chosen)) {
        return *format;
    }
    throw unknownEnding(path, "--to");
}

} // namespace pelluvia::host
