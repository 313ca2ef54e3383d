// SPDX-License-Identifier: MIT

#include <Pelluvia/recording/RecordingGPSOutput.h>

#include <Pelluvia/recording/internal/RecorderState.h>

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

/// See `appendArrayData`.
bool append(RecorderState &state, Value object, const Key &key) {
    if (!state.receivedData) {
        state.receivedData = Ref<Dictionary>::make();
    }
    Dictionary &data = *state.receivedData;
    if (data.array(key) == nullptr && !data.set(key, Ref<Array>::make())) {
        return false;
    }
    data.array(key)->append(std::move(object));
    return true;
}

/// Appends the open track or route, if there is one, which is open no longer then.
void file(RecorderState &state, Ref<Dictionary> &open, const Key &key) {
    if (open) {
        append(state, Value(open), key);
        open = nullptr;
    }
}

} // namespace

std::shared_ptr<RecordingGPSOutput> RecordingGPSOutput::recorder() {
    return init();
}

std::shared_ptr<RecordingGPSOutput> RecordingGPSOutput::init() {
    return std::shared_ptr<RecordingGPSOutput>(new RecordingGPSOutput);
}

RecordingGPSOutput::RecordingGPSOutput() : state_(std::make_unique<RecorderState>()) {}

RecordingGPSOutput::~RecordingGPSOutput() {
    clear();
}

void RecordingGPSOutput::setCompletionObject(
    MessageTarget<std::shared_ptr<RecordingGPSOutput>> target) {
    state_->observers.setCompletionObject(std::move(target));
}

void RecordingGPSOutput::setErrorObject(MessageTarget<Report> target) {
    state_->observers.setErrorObject(std::move(target));
}

void RecordingGPSOutput::setProgress(std::shared_ptr<GPXExporterProgress> newProgress) {
    state_->observers.setProgress(std::move(newProgress));
}

const Report &RecordingGPSOutput::lastError() const noexcept {
    return state_->error;
}

bool RecordingGPSOutput::minimizeTracks() const noexcept {
    return state_->minimizeTracks;
}

void RecordingGPSOutput::setMinimizeTracks(bool minimize) noexcept {
    state_->minimizeTracks = minimize;
}

float RecordingGPSOutput::pointEqualSlop() const noexcept {
    return state_->pointEqualSlop;
}

void RecordingGPSOutput::setPointEqualSlop(float slop) noexcept {
    state_->pointEqualSlop = slop;
}

float RecordingGPSOutput::slopeEqualSlop() const noexcept {
    return state_->slopeEqualSlop;
}

void RecordingGPSOutput::setSlopeEqualSlop(float slop) noexcept {
    state_->slopeEqualSlop = slop;
}

void RecordingGPSOutput::clear() {
    state_->trackData = nullptr;
    state_->waypointData = nullptr;
    state_->routeData = nullptr;
    state_->lapData = nullptr;
    state_->receivedData = nullptr;
    state_->error = Report();
    state_->slopeEqualTossedPoints = 0;
    state_->pointEqualTossedPoints = 0;
}

Dictionary *RecordingGPSOutput::receivedData() const noexcept {
    return state_->receivedData.get();
}

Dictionary *RecordingGPSOutput::currentTrack() const noexcept {
    return state_->trackData.get();
}

Dictionary *RecordingGPSOutput::currentRoute() const noexcept {
    return state_->routeData.get();
}

Dictionary *RecordingGPSOutput::lastTrackPoint() const noexcept {
    return lastPointOf(state_->trackData);
}

Dictionary *RecordingGPSOutput::lastRoutePoint() const noexcept {
    return lastPointOf(state_->routeData);
}

bool RecordingGPSOutput::appendArrayData(Value object, const Key &key) {
    return append(*state_, std::move(object), key);
}

void RecordingGPSOutput::newTrack(const Dictionary *extra) {
    file(*state_, state_->trackData, recordedData::track);
    state_->trackData = opened(extra);
    for (GPSPoint *point : {&state_->lastPoint, &state_->prevPoint}) {
        point->latitude = 0.0;
        point->longitude = 0.0;
    }
}

void RecordingGPSOutput::newRoute(const Dictionary *extra) {
    file(*state_, state_->routeData, recordedData::route);
    state_->routeData = opened(extra);
}

void RecordingGPSOutput::routePoint(GPSPoint point, const Dictionary *extra) {
    if (Array *points = state_->routeData ? state_->routeData->array(extras::points) : nullptr) {
        points->append(Dictionary::wrapping(point, extra));
    }
    state_->observers.countItem();
}

void RecordingGPSOutput::wayPoint(GPSPoint point, const Dictionary *extra) {
    if (state_->routeData) {
        routePoint(point, extra);
        return;
    }
    append(*state_, Value(Dictionary::wrapping(point, extra)), recordedData::waypoint);
    state_->observers.countItem();
}

// Where something is done after an observer was told, the recorder keeps hold of itself: the
// observer may let go of the last reference.

void RecordingGPSOutput::startTransfer(const void * /*sender*/, int kind, const Dictionary *extra) {
    const auto self = weak_from_this().lock();
    state_->observers.tellStart(kind, extra);
}

void RecordingGPSOutput::endTransfer(int kind) {
    const auto self = weak_from_this().lock();
    state_->observers.tellEnd(kind);
    state_->observers.resetCount();
    if (kind == transferKind::routes) {
        file(*state_, state_->routeData, recordedData::route);
    } else if (kind == transferKind::tracks) {
        file(*state_, state_->trackData, recordedData::track);
    }
    state_->observers.forgetKind();
}

void RecordingGPSOutput::warning(const Report &object) {
    state_->observers.report(object);
}

void RecordingGPSOutput::error(const Report &error) {
    // Without an error object the error is not kept either.
    if (state_->observers.report(error)) {
        state_->error = error;
    }
}

void RecordingGPSOutput::gpsStateChange(int state) {
    if (state == gpsState::finished) {
        state_->observers.complete(shared_from_this());
    }
}

void RecordingGPSOutput::startSending(const void *sender, int kind, const Dictionary *extra) {
    startTransfer(sender, kind, extra);
}

void RecordingGPSOutput::sendProgress(int count) {
    state_->observers.tellProgress(count);
}

void RecordingGPSOutput::endSending(int kind) {
    const auto self = weak_from_this().lock();
    state_->observers.tellEnd(kind);
    state_->observers.forgetKind();
}

} // namespace pelluvia
