// SPDX-License-Identifier: MIT

#include <Pelluvia/gpxwriter/GPXExporter.h>

#include <Pelluvia/gpxwriter/internal/DictionaryStrings.h>
#include <Pelluvia/model/ExtrasKeys.h>
#include <Pelluvia/model/ReceiverObservers.h>
#include <Pelluvia/text/Text.h>

#include <cerrno>
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

/// What an exporter holds.
class ExporterState {
  public:
    std::string outputPath;  // empty without a path
    GPXRef gpxRef = nullptr; // owned; null without a document
    ReceiverObservers<GPXExporter> observers;
    std::error_code closedFailure; // what `writeFailure` says once the document is closed

    void begin(GPXRef document) {
        gpxRef = document;
        GPXWriteHeader(gpxRef, asciiCreator().c_str());
    }
    void closeIfOpen() {
        if (gpxRef != nullptr) {
            closedFailure = closeDocument(std::exchange(gpxRef, nullptr));
        }
    }
};

void GPXExporter::setCreator(std::string_view creator) {
    CreatorStore &store = creatorStore();
    const std::lock_guard lock(store.mutex);
    store.sGPXExporterCreator = creator;
}

std::shared_ptr<GPXExporter> GPXExporter::init() {
    return std::make_shared<GPXExporter>(Factory());
}

// A document that could not be made is told at once: anything that is destroyed before the host has
// looked could change errno.

std::shared_ptr<GPXExporter> GPXExporter::initWithPath(const std::string &path) {
    std::error_code error;
    // Not with GPXCreate, which sees a path only up to a NUL.
    GPXRef document = createDocument(OutputFile::open(path, error));
    if (document == nullptr) {
        errno = error.value();
        return nullptr;
    }
    std::shared_ptr<GPXExporter> exporter = init();
    exporter->state_->begin(document);
    exporter->state_->outputPath = path;
    return exporter;
}

std::shared_ptr<GPXExporter> GPXExporter::initWithDescriptor(int descriptor) {
    GPXRef document = GPXCreateWithDescriptor(descriptor);
    if (document == nullptr) {
        return nullptr;
    }
    std::shared_ptr<GPXExporter> exporter = init();
    exporter->state_->begin(document);
    return exporter;
}

std::shared_ptr<GPXExporter> GPXExporter::initInMemory(std::string &text) {
    std::shared_ptr<GPXExporter> exporter = init();
    exporter->state_->begin(createDocument(OutputFile::inMemory(text)));
    return exporter;
}

GPXExporter::GPXExporter(Factory /*onlyMadeByFactories*/)
    : state_(std::make_unique<ExporterState>()) {}

GPXExporter::~GPXExporter() {
    state_->closeIfOpen();
}

void GPXExporter::setCompletionObject(MessageTarget<std::shared_ptr<GPXExporter>> target) {
    state_->observers.setCompletionObject(std::move(target));
}

void GPXExporter::setErrorObject(MessageTarget<Report> target) {
    state_->observers.setErrorObject(std::move(target));
}

void GPXExporter::setProgress(std::shared_ptr<GPXExporterProgress> newProgress) {
    state_->observers.setProgress(std::move(newProgress));
}

GPXRef GPXExporter::document() const noexcept {
    return state_->gpxRef;
}

std::error_code GPXExporter::flush() {
    return state_->gpxRef != nullptr ? state_->gpxRef->file->flush() : writeFailure();
}

std::error_code GPXExporter::sync() {
    return state_->gpxRef != nullptr ? state_->gpxRef->file->sync() : writeFailure();
}

std::error_code GPXExporter::writeFailure() const noexcept {
    return state_->gpxRef != nullptr ? state_->gpxRef->file->failure() : state_->closedFailure;
}

void GPXExporter::newTrackSegment() {
    if (GPXRef gpxRef = state_->gpxRef) {
        GPXWriteTrackSegment(gpxRef);
    }
}

void GPXExporter::newTrack(const Dictionary *extra) {
    if (GPXRef gpxRef = state_->gpxRef) {
        GPXWriteTrackStart(gpxRef, borrowedStringFromDictionary(extra, extras::name),
                           borrowedStringFromDictionary(extra, extras::description),
                           borrowedStringFromDictionary(extra, extras::author), extra);
    }
}

void GPXExporter::newRoute(const Dictionary *extra) {
    if (GPXRef gpxRef = state_->gpxRef) {
        GPXWriteRouteStart(gpxRef, getIntFromDictionary(extra, extras::routeNumber),
                           borrowedStringFromDictionary(extra, extras::name),
                           borrowedStringFromDictionary(extra, extras::comment));
    }
}

void GPXExporter::trackPoint(GPSPoint point, const Dictionary *extra) {
    if (GPXRef gpxRef = state_->gpxRef) {
        GPXWriteTrackPoint(gpxRef, point.time, extra, point.latitude, point.longitude,
                           point.altitude);
    }
    state_->observers.countItem();
}

void GPXExporter::wayPoint(GPSPoint point, const Dictionary *extra) {
    if (GPXRef gpxRef = state_->gpxRef) {
        GPXWriteWayPoint(gpxRef, point.time, borrowedStringFromDictionary(extra, extras::name),
                         borrowedStringFromDictionary(extra, extras::type),
                         borrowedStringFromDictionary(extra, extras::comment),
                         borrowedStringFromDictionary(extra, extras::symbol), extra, point.latitude,
                         point.longitude, point.altitude);
    }
    state_->observers.countItem();
}

// Route points reach the file only as waypoints sent while a route is open.
void GPXExporter::routePoint(GPSPoint /*point*/, const Dictionary * /*extra*/) {
    state_->observers.countItem();
}

void GPXExporter::poiPoint(GPSPoint /*point*/, const Dictionary * /*extra*/) {}

void GPXExporter::lapInfoStart(GPSPoint start, GPSPoint end, const Dictionary *extras) {
    if (GPXRef gpxRef = state_->gpxRef) {
        GPXWriteLapInfo(gpxRef, start, end, extras);
    }
}

// Where something is done after an observer was told, the exporter keeps hold of itself: the
// observer may let go of the last reference.

void GPXExporter::startTransfer(const void * /*sender*/, int kind, const Dictionary *extra) {
    const auto self = weak_from_this().lock();
    state_->observers.tellStart(kind, extra);
}

void GPXExporter::endTransfer(int kind) {
    const auto self = weak_from_this().lock();
    state_->observers.tellEnd(kind);
    state_->observers.resetCount();
    if (state_->gpxRef == nullptr) {
        return;
    }
    if (kind == transferKind::routes) {
        GPXWriteRouteEnd(state_->gpxRef);
    } else if (kind == transferKind::tracks) {
        GPXWriteTrackEnd(state_->gpxRef);
    }
}

void GPXExporter::currentPosition(GPSPoint /*point*/, int /*accuracy*/) {}

void GPXExporter::warning(const Report &object) {
    state_->observers.report(object);
}

void GPXExporter::error(const Report &error) {
    state_->observers.report(error);
}

void GPXExporter::gpsStateChange(int state) {
    if (state == gpsState::finished) {
        state_->closeIfOpen();
        state_->observers.complete(shared_from_this());
    }
}

void GPXExporter::startSending(const void * /*sender*/, int /*kind*/,
                               const Dictionary * /*extra*/) {}

void GPXExporter::sendProgress(int /*count*/) {}

void GPXExporter::endSending(int /*kind*/) {}

} // namespace pelluvia
