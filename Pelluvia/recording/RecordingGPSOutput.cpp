#include <Pelluvia/recording/RecordingGPSOutput.h>

#include <Pelluvia/system/MainThread.h>

namespace pelluvia {

namespace {

/// A track or route dictionary: what came with its start, and an empty list of points.
Ref<Dictionary> opened(const Dictionary *attributes) {
    auto made =
        attributes != nullptr ? Ref<Dictionary>::make(*attributes) : Ref<Dictionary>::make();
    made->set(extras::points, Value(Ref<Array>::make()));
    return made;
}

Dictionary *lastPointOf(const Ref<Dictionary> &open) noexcept {
    const Array *points = open ? open->array(extras::points) : nullptr;
    return points != nullptr && !points->empty() ? points->dictionary(points->size() - 1) : nullptr;
}

std::int32_t countOf(const Dictionary *extra) noexcept {
    const auto count = extra != nullptr ? extra->number(extras::count) : std::nullopt;
    return count ? count->intValue() : 0;
}

} // namespace

std::shared_ptr<RecordingGPSOutput> RecordingGPSOutput::recorder() {
    return init();
}

std::shared_ptr<RecordingGPSOutput> RecordingGPSOutput::init() {
    return std::shared_ptr<RecordingGPSOutput>(new RecordingGPSOutput);
}

RecordingGPSOutput::~RecordingGPSOutput() {
    clear();
}

void RecordingGPSOutput::clear() {
    trackData = nullptr;
    waypointData = nullptr;
    routeData = nullptr;
    lapData = nullptr;
    _receivedData = nullptr;
    _error = Report();
    slopeEqualTossedPoints = 0;
    pointEqualTossedPoints = 0;
}

Dictionary *RecordingGPSOutput::lastTrackPoint() const noexcept {
    return lastPointOf(trackData);
}

Dictionary *RecordingGPSOutput::lastRoutePoint() const noexcept {
    return lastPointOf(routeData);
}

bool RecordingGPSOutput::appendArrayData(Value object, const Key &key) {
    if (!_receivedData) {
        _receivedData = Ref<Dictionary>::make();
    }
    if (_receivedData->array(key) == nullptr && !_receivedData->set(key, Ref<Array>::make())) {
        return false;
    }
    _receivedData->array(key)->append(std::move(object));
    return true;
}

void RecordingGPSOutput::fileTrack() {
    if (trackData) {
        appendArrayData(Value(trackData), recordedData::track);
        trackData = nullptr;
    }
}

void RecordingGPSOutput::fileRoute() {
    if (routeData) {
        appendArrayData(Value(routeData), recordedData::route);
        routeData = nullptr;
    }
}

void RecordingGPSOutput::countItem() {
    // A count that passes the largest integer starts again from the smallest.
    itemCount = static_cast<std::int32_t>(static_cast<std::uint32_t>(itemCount) + 1U);
    // Held on to here and below: the observer may take itself away when it is told.
    if (const auto observer = progress) {
        observer->gpxProgress(transferKind, itemCount);
    }
}

void RecordingGPSOutput::newTrack(const Dictionary *extra) {
    fileTrack();
    trackData = opened(extra);
    for (GPSPoint *point : {&lastPoint, &prevPoint}) {
        point->latitude = 0.0;
        point->longitude = 0.0;
    }
}

void RecordingGPSOutput::newRoute(const Dictionary *extra) {
    fileRoute();
    routeData = opened(extra);
}

void RecordingGPSOutput::routePoint(GPSPoint point, const Dictionary *extra) {
    if (Array *points = routeData ? routeData->array(extras::points) : nullptr) {
        points->append(Dictionary::wrapping(point, extra));
    }
    countItem();
}

void RecordingGPSOutput::wayPoint(GPSPoint point, const Dictionary *extra) {
    if (routeData) {
        routePoint(point, extra);
        return;
    }
    appendArrayData(Value(Dictionary::wrapping(point, extra)), recordedData::waypoint);
    countItem();
}

void RecordingGPSOutput::startTransfer(const void * /*sender*/, int kind, const Dictionary *extra) {
    if (const auto observer = progress) {
        observer->gpxStartTransfer(kind, countOf(extra));
    }
    transferKind = kind;
}

void RecordingGPSOutput::endTransfer(int kind) {
    if (const auto observer = progress) {
        observer->gpxEndTransfer(kind);
    }
    itemCount = 0;
    if (kind == transferKind::routes) {
        fileRoute();
    } else if (kind == transferKind::tracks) {
        fileTrack();
    }
    transferKind = 0;
}

void RecordingGPSOutput::warning(const Report &object) {
    mainThread::perform(errorObject, errorSelector, object);
}

void RecordingGPSOutput::error(const Report &error) {
    // Without an error object the error is not kept either.
    if (errorObject != nullptr) {
        mainThread::perform(errorObject, errorSelector, error);
        _error = error;
    }
}

void RecordingGPSOutput::gpsStateChange(int state) {
    if (state == gpsState::finished) {
        mainThread::perform(completionObject, completionSelector, shared_from_this());
    }
}

void RecordingGPSOutput::startSending(const void *sender, int kind, const Dictionary *extra) {
    startTransfer(sender, kind, extra);
}

void RecordingGPSOutput::sendProgress(int count) {
    if (const auto observer = progress) {
        observer->gpxProgress(transferKind, count);
    }
}

void RecordingGPSOutput::endSending(int kind) {
    if (const auto observer = progress) {
        observer->gpxEndTransfer(kind);
    }
    transferKind = 0;
}

} // namespace pelluvia
