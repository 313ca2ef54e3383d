#include <Pelluvia/gpximport/GPXFileImporter.h>

#include <Pelluvia/model/ExtrasKeys.h>
#include <Pelluvia/model/TransferKind.h>
#include <Pelluvia/text/Scanner.h>

/// \file
/// What the importer sends to its receiver. Extras are filled in a fixed order, which receivers
/// that print or store them keep.

namespace pelluvia {

namespace {

/// Empties the dictionary that was sent at the end of the block, however that comes about: only
/// texts that nobody shares any more give their memory to the next ones.
class Emptied {
  public:
    explicit Emptied(Dictionary &extras) noexcept : extras_(extras) {}
    Emptied(const Emptied &) = delete;
    Emptied &operator=(const Emptied &) = delete;
    ~Emptied() { extras_.removeAll(); }

  private:
    Dictionary &extras_;
};

void addText(Dictionary &extras, const Key &key, const CollectedText &text) {
    if (text.isPresent()) {
        extras.set(key, text.value());
    }
}

/// NaN is a value: it differs from 0.
template <class Number>
void addNumber(Dictionary &extras, const Key &key, CollectedNumber<Number> &number) {
    const Number value = number.value();
    if (value != 0) {
        extras.set(key, Value(value));
    }
}

void addIndex(Dictionary &extras, const CollectedText &number) {
    if (number.isPresent()) {
        extras.set(extras::index, Value(intValue(number.view())));
    }
}

/// nil for a dictionary that nothing was added to.
const Dictionary *unlessEmpty(const Dictionary &extras) noexcept {
    return extras.empty() ? nullptr : &extras;
}

} // namespace

void GPXFileImporter::clearPoint() noexcept {
    currentPoint.clear();
    const auto clearAll = [](auto &...each) { (each.clear(), ...); };
    clearAll(comment, description, name, number, symbol, url, urlName, geocacheTerrain,
             geocacheDifficulty, geocacheType, geocacheHint, geocacheName, sensor);
    clearAll(hr, cadence, temp, distance, proximity);
}

void GPXFileImporter::addWaypoint() {
    if (!sends(transferKind::waypoints)) {
        return;
    }
    const Emptied whenDone(scratch);
    addText(scratch, extras::comment, comment.isPresent() ? comment : geocacheName);
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
    addNumber(scratch, extras::proximity, proximity);
    output->wayPoint(currentPoint.read(), &scratch);
    clearPoint();
}

void GPXFileImporter::startRoute() {
    if (!sends(transferKind::routes) || routeStarted) {
        return;
    }
    const Emptied whenDone(scratch);
    addText(scratch, extras::name, name);
    addIndex(scratch, number);
    output->newRoute(unlessEmpty(scratch));
    routeStarted = true;
}

void GPXFileImporter::addRoutePoint() {
    if (!sends(transferKind::routes)) {
        return;
    }
    const Emptied whenDone(scratch);
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
    courseIndex.clear();
    isCourse = 0;
}

void GPXFileImporter::startTrkSeg() {
    if (!sends(transferKind::tracks)) {
        return;
    }
    if (!trackStarted) {
        const Emptied whenDone(scratch);
        addText(scratch, extras::name, name);
        addText(scratch, extras::description, description);
        addIndex(scratch, number);
        if (isCourse != 0) {
            scratch.set(extras::courseIndex, Value(courseIndex.value()));
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
    const Emptied whenDone(scratch);
    addNumber(scratch, extras::hr, hr);
    addNumber(scratch, extras::cadence, cadence);
    addNumber(scratch, extras::distance, distance);
    addText(scratch, extras::sensor, sensor);
    addNumber(scratch, extras::temp, temp);
    // Not cleared: what was collected stays until the next point starts.
    output->trackPoint(currentPoint.read(), unlessEmpty(scratch));
}

void GPXFileImporter::endRoute() noexcept {}

void GPXFileImporter::endTrk() noexcept {}

void GPXFileImporter::endTrkSeg() noexcept {}

} // namespace pelluvia
