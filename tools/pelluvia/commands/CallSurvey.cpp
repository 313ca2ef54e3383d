// SPDX-License-Identifier: MIT

#include <tools/pelluvia/commands/CallSurvey.h>

#include <Pelluvia/model/ExtrasKeys.h>

#include <limits>

namespace pelluvia::host {

namespace {

/// One more, as far as the number goes.
std::int32_t next(std::int32_t count) {
    return count < std::numeric_limits<std::int32_t>::max() ? count + 1 : count;
}

bool hasText(const Dictionary *extra, const Key &key) {
    return extra != nullptr && extra->string(key).has_value();
}

} // namespace

void CallSurvey::newTrackSegment() {
    survey_.counter->setTracksegments(next(survey_.counter->tracksegments()));
}

void CallSurvey::newTrack(const Dictionary *extra) {
    isInRoute_ = false;
    survey_.counter->setTracks(next(survey_.counter->tracks()));
    addTexts(extra);
}

void CallSurvey::newRoute(const Dictionary *extra) {
    isInRoute_ = true;
    survey_.counter->setRoutes(next(survey_.counter->routes()));
    addTexts(extra);
}

void CallSurvey::trackPoint(GPSPoint point, const Dictionary *extra) {
    ++survey_.trackPoints;
    add(point, extra);
}

void CallSurvey::wayPoint(GPSPoint point, const Dictionary *extra) {
    if (isInRoute_) {
        return routePoint(point, extra);
    }
    survey_.counter->setWaypoints(next(survey_.counter->waypoints()));
    add(point, extra);
}

void CallSurvey::routePoint(GPSPoint point, const Dictionary *extra) {
    survey_.counter->setRoutepoints(next(survey_.counter->routepoints()));
    add(point, extra);
}

void CallSurvey::endTransfer(int /*kind*/) {
    isInRoute_ = false;
}

void CallSurvey::add(const GPSPoint &point, const Dictionary *extra) {
    survey_.addPosition(point.latitude, point.longitude);
    survey_.addTime(point.time);
    addTexts(extra);
}

void CallSurvey::addTexts(const Dictionary *extra) {
    GPXImportCounter &counter = *survey_.counter;
    counter.setHasName(counter.hasName() || hasText(extra, extras::name));
    counter.setHasComment(counter.hasComment() || hasText(extra, extras::comment));
    counter.setHasDescription(counter.hasDescription() || hasText(extra, extras::description));
    counter.setHasType(counter.hasType() || hasText(extra, extras::type));
    counter.setHasLink(counter.hasLink() || hasText(extra, extras::url) ||
                       hasText(extra, extras::urlName));
}

} // namespace pelluvia::host
