#include <Pelluvia/gpxwriter/GPXExporter.h>

#include <Pelluvia/gpxwriter/internal/DictionaryStrings.h>
#include <Pelluvia/model/ExtrasKeys.h>
#include <Pelluvia/text/Text.h>

#include <limits>
#include <mutex>

namespace pelluvia {

namespace {

constexpr const char *defaultCreator = "GPXExporter";

/// The creator of documents to come, for the whole process.
struct CreatorStore {
    std::mutex mutex;
    std::string sGPXExporterCreator = defaultCreator;
};

CreatorStore &creatorStore() {
    static CreatorStore store;
    return store;
}

/// The creator as a header can hold it.
std::string asciiCreator() {
    CreatorStore &store = creatorStore();
    const std::lock_guard lock(store.mutex);
    return isASCII(store.sGPXExporterCreator) ? store.sGPXExporterCreator : defaultCreator;
}

} // namespace

void GPXExporter::setCreator(std::string_view creator) {
    CreatorStore &store = creatorStore();
    const std::lock_guard lock(store.mutex);
    store.sGPXExporterCreator = creator;
}

std::shared_ptr<GPXExporter> GPXExporter::init() {
    return std::make_shared<GPXExporter>(Factory());
}

std::shared_ptr<GPXExporter> GPXExporter::initWithPath(const std::string &path) {
    GPXRef document = GPXCreate(path.c_str());
    if (document == nullptr) {
        return nullptr; // At once: destroying anything here could change errno.
    }
    std::shared_ptr<GPXExporter> exporter = init();
    exporter->gpxRef = document;
    exporter->outputPath = path;
    GPXWriteHeader(exporter->gpxRef, asciiCreator().c_str());
    return exporter;
}

GPXExporter::~GPXExporter() {
    closeIfOpen();
}

void GPXExporter::setProgress(std::shared_ptr<GPXExporterProgress> newProgress) {
    progress = std::move(newProgress);
}

std::error_code GPXExporter::writeFailure() const noexcept {
    return gpxRef != nullptr ? gpxRef->file->failure() : closedFailure_;
}

std::error_code GPXExporter::flush() {
    return gpxRef != nullptr ? gpxRef->file->flush() : closedFailure_;
}

void GPXExporter::closeIfOpen() {
    if (gpxRef != nullptr) {
        closedFailure_ = closeDocument(std::exchange(gpxRef, nullptr));
    }
}

void GPXExporter::countPoint() {
    if (itemCount < std::numeric_limits<int>::max()) {
        ++itemCount;
    }
    if (progress != nullptr) {
        progress->gpxProgress(transferKind, itemCount);
    }
}

void GPXExporter::newTrackSegment() {
    if (gpxRef != nullptr) {
        GPXWriteTrackSegment(gpxRef);
    }
}

void GPXExporter::newTrack(const Dictionary *extra) {
    if (gpxRef != nullptr) {
        GPXWriteTrackStart(gpxRef, borrowedStringFromDictionary(extra, extras::name),
                           borrowedStringFromDictionary(extra, extras::description),
                           borrowedStringFromDictionary(extra, extras::author), extra);
    }
}

void GPXExporter::newRoute(const Dictionary *extra) {
    if (gpxRef != nullptr) {
        GPXWriteRouteStart(gpxRef, getIntFromDictionary(extra, extras::routeNumber),
                           borrowedStringFromDictionary(extra, extras::name),
                           borrowedStringFromDictionary(extra, extras::comment));
    }
}

void GPXExporter::trackPoint(GPSPoint point, const Dictionary *extra) {
    if (gpxRef != nullptr) {
        GPXWriteTrackPoint(gpxRef, point.time, extra, point.latitude, point.longitude,
                           point.altitude);
    }
    countPoint();
}

void GPXExporter::wayPoint(GPSPoint point, const Dictionary *extra) {
    if (gpxRef != nullptr) {
        GPXWriteWayPoint(gpxRef, point.time, borrowedStringFromDictionary(extra, extras::name),
                         borrowedStringFromDictionary(extra, extras::type),
                         borrowedStringFromDictionary(extra, extras::comment),
                         borrowedStringFromDictionary(extra, extras::symbol), extra, point.latitude,
                         point.longitude, point.altitude);
    }
    countPoint();
}

// Route points reach the file only as waypoints sent while a route is open.
void GPXExporter::routePoint(GPSPoint /*point*/, const Dictionary * /*extra*/) {
    countPoint();
}

void GPXExporter::poiPoint(GPSPoint /*point*/, const Dictionary * /*extra*/) {}

void GPXExporter::lapInfoStart(GPSPoint start, GPSPoint end, const Dictionary *extras) {
    if (gpxRef != nullptr) {
        GPXWriteLapInfo(gpxRef, start, end, extras);
    }
}

// The count goes on: only the end of a transfer resets it.
void GPXExporter::startTransfer(const void * /*sender*/, int kind, const Dictionary *extra) {
    if (progress != nullptr) {
        progress->gpxStartTransfer(kind, getIntFromDictionary(extra, extras::count));
    }
    transferKind = kind;
}

void GPXExporter::endTransfer(int kind) {
    if (progress != nullptr) {
        progress->gpxEndTransfer(kind);
    }
    itemCount = 0;
    if (gpxRef == nullptr) {
        return;
    }
    if (kind == transferKind::routes) {
        GPXWriteRouteEnd(gpxRef);
    } else if (kind == transferKind::tracks) {
        GPXWriteTrackEnd(gpxRef);
    }
}

void GPXExporter::currentPosition(GPSPoint /*point*/, int /*accuracy*/) {}

void GPXExporter::reportProblem(const Report &problem) {
    mainThread::perform(errorObject, errorSelector, problem);
}

void GPXExporter::warning(const Report &object) {
    reportProblem(object);
}

void GPXExporter::error(const Report &error) {
    reportProblem(error);
}

void GPXExporter::gpsStateChange(int state) {
    if (state == gpsState::finished) {
        closeIfOpen();
        mainThread::perform(completionObject, completionSelector, shared_from_this());
    }
}

void GPXExporter::startSending(const void * /*sender*/, int /*kind*/,
                               const Dictionary * /*extra*/) {}

void GPXExporter::sendProgress(int /*count*/) {}

void GPXExporter::endSending(int /*kind*/) {}

} // namespace pelluvia
