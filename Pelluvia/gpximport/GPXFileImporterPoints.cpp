#include <Pelluvia/gpximport/GPXFileImporter.h>

#include <Pelluvia/model/ExtrasKeys.h>
#include <Pelluvia/model/TransferKind.h>
#include <Pelluvia/platform/Scanner.h>

/// \file
/// What the importer sends to its receiver. Extras are filled in a fixed order, which receivers
/// that print or store them keep.

namespace pelluvia {

namespace {

void addText(Dictionary &extras, const Key &key, const CollectedText &text) {
    if (text.isPresent) {
        extras.set(key, Value(std::string_view(text.text)));
    }
}

/// NaN is a value: it differs from 0.
void addFloat(Dictionary &extras, const Key &key, float value) {
    if (value != 0.0F) {
        extras.set(key, Value(value));
    }
}

void addInt(Dictionary &extras, const Key &key, std::int32_t value) {
    if (value != 0) {
        extras.set(key, Value(value));
    }
}

void addNumber(Dictionary &extras, const CollectedText &number) {
    if (number.isPresent) {
        extras.set(extras::index, Value(intValue(number.text)));
    }
}

/// nil for a dictionary that nothing was added to.
const Dictionary *unlessEmpty(const Dictionary &extras) noexcept {
    return extras.empty() ? nullptr : &extras;
}

} // namespace

void GPXFileImporter::clearPoint() noexcept {
    currentPoint.clear();
    for (CollectedText *text :
         {&comment, &description, &name, &number, &symbol, &url, &urlName, &geocacheTerrain,
          &geocacheDifficulty, &geocacheType, &geocacheHint, &geocacheName, &sensor}) {
        text->clear();
    }
    hr = cadence = 0;
    temp = distance = proximity = 0.0F;
}

void GPXFileImporter::addWaypoint() {
    if (!sends(transferKind::waypoints)) {
        return;
    }
    scratch.removeAll();
    addText(scratch, extras::comment, comment.isPresent ? comment : geocacheName);
    addText(scratch, extras::description, description);
    addText(scratch, extras::name, name);
    addText(scratch, extras::symbol, symbol);
    addText(scratch, extras::url, url);
    addText(scratch, extras::urlName, urlName);
    addText(scratch, extras::terrain, geocacheTerrain);
    addText(scratch, extras::difficulty, geocacheDifficulty);
    addText(scratch, extras::geocacheType, geocacheType);
    addText(scratch, extras::geocacheOwner, geocacheOwner);
    addText(scratch, extras::geocacheHint, geocacheHint);
    addFloat(scratch, extras::proximity, proximity);
    output->wayPoint(currentPoint.read(), &scratch);
    clearPoint();
}

void GPXFileImporter::startRoute() {
    if (!sends(transferKind::routes) || routeStarted) {
        return;
    }
    scratch.removeAll();
    addText(scratch, extras::name, name);
    addNumber(scratch, number);
    output->newRoute(unlessEmpty(scratch));
    routeStarted = true;
}

void GPXFileImporter::addRoutePoint() {
    if (!sends(transferKind::routes)) {
        return;
    }
    scratch.removeAll();
    addText(scratch, extras::comment, comment);
    addText(scratch, extras::description, description);
    addText(scratch, extras::name, name);
    addText(scratch, extras::symbol, symbol);
    addText(scratch, extras::url, url);
    addText(scratch, extras::urlName, urlName);
    output->routePoint(currentPoint.read(), &scratch);
    clearPoint();
}

void GPXFileImporter::startTrk() noexcept {
    trackStarted = false;
    courseIndex = 0;
    isCourse = 0;
}

void GPXFileImporter::startTrkSeg() {
    if (!sends(transferKind::tracks)) {
        return;
    }
    if (!trackStarted) {
        scratch.removeAll();
        addText(scratch, extras::name, name);
        addText(scratch, extras::description, description);
        addNumber(scratch, number);
        if (isCourse != 0) {
            scratch.set(extras::courseIndex, Value(courseIndex));
        }
        output->newTrack(unlessEmpty(scratch));
        trackStarted = true;
    }
    output->newTrackSegment();
}

void GPXFileImporter::addTrkPt() {
    if (!sends(transferKind::tracks)) {
        return;
    }
    scratch.removeAll();
    addInt(scratch, extras::hr, hr);
    addInt(scratch, extras::cadence, cadence);
    addFloat(scratch, extras::distance, distance);
    addText(scratch, extras::sensor, sensor);
    addFloat(scratch, extras::temp, temp);
    // Not cleared: what was collected stays until the next point starts.
    output->trackPoint(currentPoint.read(), unlessEmpty(scratch));
}

void GPXFileImporter::endRoute() noexcept {}

void GPXFileImporter::endTrk() noexcept {}

void GPXFileImporter::endTrkSeg() noexcept {}

} // namespace pelluvia
