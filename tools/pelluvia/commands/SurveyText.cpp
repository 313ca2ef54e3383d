// SPDX-License-Identifier: MIT

#include <tools/pelluvia/commands/SurveyText.h>

#include <tools/pelluvia/terminal/Messages.h>

#include <Pelluvia/text/Calendar.h>
#include <Pelluvia/text/NumberText.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <utility>

namespace pelluvia::host {

namespace {

using nlohmann::ordered_json;

/// A name and what follows it, in columns.
std::string row(std::string_view name, const std::string &text) {
    constexpr std::size_t column = 14;
    std::string result = "  " + std::string(name);
    result.resize(std::max(result.size(), column), ' ');
    return result + text + "\n";
}

/// A number that is not negative, in at least so many digits.
std::string digits(std::int64_t number, std::size_t count) {
    const std::string text = std::to_string(number);
    return std::string(count - std::min(text.size(), count), '0') + text;
}

std::string counted(std::int64_t count, std::string_view one, std::string_view many) {
    return std::to_string(count) + " " + std::string(count == 1 ? one : many);
}

std::string degrees(double value) {
    std::array<char, maxGeneralText> text{};
    return {text.data(), writeGeneral(text.data(), value)};
}

std::string featureList(const GPXImportCounter &counter) {
    std::string result;
    for (const auto &[has, name] :
         {std::pair(counter.hasName(), "names"), std::pair(counter.hasComment(), "comments"),
          std::pair(counter.hasDescription(), "descriptions"),
          std::pair(counter.hasType(), "types"), std::pair(counter.hasSrc(), "sources"),
          std::pair(counter.hasLink(), "links")}) {
        if (has) {
            result.append(result.empty() ? "" : ", ").append(name);
        }
    }
    return result;
}

ordered_json boundsObject(const std::optional<Bounds> &bounds) {
    if (!bounds) {
        return nullptr;
    }
    return {{"minlat", bounds->minLatitude},
            {"minlon", bounds->minLongitude},
            {"maxlat", bounds->maxLatitude},
            {"maxlon", bounds->maxLongitude}};
}

} // namespace

std::string utcText(std::int64_t seconds) {
    const CivilTime time = civilFromSeconds(seconds);
    const std::string sign = time.date.year < 0 ? "-" : "";
    return sign + digits(std::abs(time.date.year), 4) + '-' + digits(time.date.month, 2) + '-' +
           digits(time.date.day, 2) + 'T' + digits(time.hour, 2) + ':' + digits(time.minute, 2) +
           ':' + digits(time.second, 2) + 'Z';
}

std::string tableText(const std::string &file, const Survey &survey, bool isPartial) {
    const GPXImportCounter &counter = *survey.counter;
    const auto &bounds = survey.bounds;
    const auto &times = survey.times;
    const std::string features = featureList(counter);
    return harmless(file) + (isPartial ? " (partial)" : "") + "\n" +
           row("waypoints", std::to_string(counter.waypoints())) +
           row("routes", std::to_string(counter.routes()) + " with " +
                             counted(counter.routepoints(), "point", "points")) +
           row("tracks", std::to_string(counter.tracks()) + " with " +
                             counted(counter.tracksegments(), "segment", "segments") + " and " +
                             counted(survey.trackPoints, "point", "points")) +
           row("latitude",
               bounds ? degrees(bounds->minLatitude) + " to " + degrees(bounds->maxLatitude)
                      : "none") +
           row("longitude",
               bounds ? degrees(bounds->minLongitude) + " to " + degrees(bounds->maxLongitude)
                      : "none") +
           row("time", times ? utcText(times->first) + " to " + utcText(times->last) : "none") +
           row("has", features.empty() ? "no texts" : features) + "\n";
}

std::string jsonText(const std::string &file, const Survey &survey, bool isPartial) {
    const GPXImportCounter &counter = *survey.counter;
    const auto &times = survey.times;
    const ordered_json object = {
        {"file", file},
        {"hasName", counter.hasName()},
        {"hasComment", counter.hasComment()},
        {"hasDescription", counter.hasDescription()},
        {"hasType", counter.hasType()},
        {"hasSrc", counter.hasSrc()},
        {"hasLink", counter.hasLink()},
        {"waypoints", counter.waypoints()},
        {"tracks", counter.tracks()},
        {"tracksegments", counter.tracksegments()},
        {"routes", counter.routes()},
        {"routepoints", counter.routepoints()},
        {"trackpoints", survey.trackPoints},
        {"bounds", boundsObject(survey.bounds)},
        {"firstTime", times ? ordered_json(utcText(times->first)) : ordered_json()},
        {"lastTime", times ? ordered_json(utcText(times->last)) : ordered_json()},
        {"partial", isPartial},
    };
    // A file's name need not be UTF-8. Where it could act on a terminal, JSON has its own escapes.
    const bool isEscaped = harmless(file) != file;
    return object.dump(-1, ' ', isEscaped, ordered_json::error_handler_t::replace) + "\n";
}

} // namespace pelluvia::host
