// SPDX-License-Identifier: MIT

#include <Pelluvia/gpximport/internal/ElementHandler.h>

#include <Pelluvia/model/ErrorDomains.h>
#include <Pelluvia/system/Localization.h>

#include <cstddef>
#include <initializer_list>
#include <string_view>
#include <utility>

namespace pelluvia {

namespace {

/// What most texts of a GPX file need at most.
constexpr std::size_t usualTextSize = 50;

using InfoPair = std::pair<std::string_view, std::optional<ErrorValue>>;

/// User information of the pairs before the first one that has no value.
ErrorInfo infoUpToFirstAbsent(std::initializer_list<InfoPair> pairs) {
    ErrorInfo info;
    for (const auto &[key, value] : pairs) {
        if (!value.has_value()) {
            break;
        }
        info.emplace_back(key, *value);
    }
    return info;
}

} // namespace

ElementHandler::ElementHandler(std::shared_ptr<GPSOutputReceiver> receiver)
    : output(std::move(receiver)) {
    currentStringValue.reserve(usualTextSize);
}

void ElementHandler::abort(XMLParser &parser, std::string_view message) {
    const std::string text = localized(message);
    const std::string recovery = localized("Try a different file");
    const ErrorPtr inner =
        Error::make(gpxFileImporterErrorDomain, gpxFileImporterStructuralError,
                    infoUpToFirstAbsent({{NSLocalizedDescriptionKey, text},
                                         {NSLocalizedRecoverySuggestionErrorKey, recovery},
                                         {NSFilePathErrorKey, path}}));
    lastError = Error::make(gpsPluginErrorDomain, gpsPluginStructuralError,
                            infoUpToFirstAbsent({{NSLocalizedDescriptionKey, text},
                                                 {NSLocalizedRecoverySuggestionErrorKey, recovery},
                                                 {NSFilePathErrorKey, path},
                                                 {NSUnderlyingErrorKey, inner}}));
    parser.abortParsing();
}

std::tuple<bool &, bool &, bool &, bool &, bool &, bool &, bool &, bool &>
ElementHandler::nesting() noexcept {
    return {flags.inRoute, flags.inRoutePoint, flags.inWaypoint,     flags.inTrkSeg,
            flags.inTrkPt, flags.inLink,       flags.inGeocacheLogs, flags.inGeocacheTravelbugs};
}

void ElementHandler::forgetElements() noexcept {
    flags = {};
    collected = {};
    currentPoint.clear();
    trackStarted = false;
    routeStarted = false;
    isCourse = 0;
    currentStringValue.clear();
}

} // namespace pelluvia
