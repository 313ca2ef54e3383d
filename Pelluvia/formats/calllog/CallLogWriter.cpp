// SPDX-License-Identifier: MIT

#include <Pelluvia/formats/calllog/CallLogWriter.h>

#include <Pelluvia/formats/calllog/internal/CallLogText.h>

#include <Pelluvia/model/ReceiverObservers.h>

namespace pelluvia {

struct CallLogWriterState {
    explicit CallLogWriterState(std::unique_ptr<OutputFile> target)
        : file(std::move(target)), text(*file) {}

    std::unique_ptr<OutputFile> file;
    CallLogText text;
    ReceiverObservers<CallLogWriter> observers;

    // Each writes `beginning`, the line up to an argument, and from that argument to the line's
    // end.
    void writePointCall(std::string_view beginning, const GPSPoint &point, const Dictionary *extra);
    void writeStartCall(std::string_view beginning, int kind, const Dictionary *extra);
    void writeDictionary(std::string_view beginning, const Dictionary *extra);
    void writeInteger(std::string_view beginning, int value);
    void writeReport(std::string_view beginning, const Report &report);
};

std::shared_ptr<CallLogWriter> CallLogWriter::initWithPath(const std::string &path,
                                                           std::error_code &error) {
    auto file = OutputFile::open(path, error);
    return file != nullptr ? std::make_shared<CallLogWriter>(std::move(file)) : nullptr;
}

CallLogWriter::CallLogWriter(std::unique_ptr<OutputFile> file)
    : state_(std::make_unique<CallLogWriterState>(std::move(file))) {}
CallLogWriter::~CallLogWriter() = default;

void CallLogWriter::setErrorObject(MessageTarget<Report> target) {
    state_->observers.setErrorObject(std::move(target));
}
void CallLogWriter::setProgress(std::shared_ptr<GPXExporterProgress> progress) {
    state_->observers.setProgress(std::move(progress));
}

std::error_code CallLogWriter::flush() {
    return state_->file->flush();
}
std::error_code CallLogWriter::close() {
    return state_->file->close();
}
std::error_code CallLogWriter::failure() const noexcept {
    return state_->file->failure();
}

void CallLogWriter::newTrackSegment() {
    state_->text.raw("{\"call\":\"newTrackSegment\"}\n");
}

void CallLogWriter::newTrack(const Dictionary *extra) {
    state_->writeDictionary(R"({"call":"newTrack:","extra":)", extra);
}

void CallLogWriter::newRoute(const Dictionary *extra) {
    state_->writeDictionary(R"({"call":"newRoute:","extra":)", extra);
}

void CallLogWriter::trackPoint(GPSPoint point, const Dictionary *extra) {
    state_->writePointCall(R"({"call":"trackPoint:extra:","point":)", point, extra);
    state_->observers.countItem();
}

void CallLogWriter::wayPoint(GPSPoint point, const Dictionary *extra) {
    state_->writePointCall(R"({"call":"wayPoint:extra:","point":)", point, extra);
    state_->observers.countItem();
}

void CallLogWriter::routePoint(GPSPoint point, const Dictionary *extra) {
    state_->writePointCall(R"({"call":"routePoint:extra:","point":)", point, extra);
    state_->observers.countItem();
}

void CallLogWriter::poiPoint(GPSPoint point, const Dictionary *extra) {
    state_->writePointCall(R"({"call":"poiPoint:extra:","point":)", point, extra);
}

void CallLogWriter::lapInfoStart(GPSPoint start, GPSPoint end, const Dictionary *extras) {
    state_->text.raw(R"({"call":"lapInfoStart:end:extras:","start":)");
    state_->text.point(start);
    state_->text.raw(R"(,"end":)");
    state_->text.point(end);
    state_->writeDictionary(R"(,"extras":)", extras);
}

void CallLogWriter::startTransfer(const void * /*sender*/, int kind, const Dictionary *extra) {
    state_->writeStartCall(R"({"call":"startTransfer:kind:extra:","kind":)", kind, extra);
    const auto self = weak_from_this().lock(); // the observer may let go of the last reference
    state_->observers.tellStart(kind, extra);
}

void CallLogWriter::endTransfer(int kind) {
    state_->writeInteger(R"({"call":"endTransfer:","kind":)", kind);
    state_->observers.resetCount();
    const auto self = weak_from_this().lock();
    state_->observers.tellEnd(kind);
}

void CallLogWriter::currentPosition(GPSPoint point, int accuracy) {
    state_->text.raw(R"({"call":"currentPosition:accuracy:","point":)");
    state_->text.point(point);
    state_->writeInteger(R"(,"accuracy":)", accuracy);
}

void CallLogWriter::warning(const Report &object) {
    state_->writeReport(R"({"call":"warning:","object":)", object);
}

void CallLogWriter::error(const Report &error) {
    state_->writeReport(R"({"call":"error:","error":)", error);
}

void CallLogWriter::gpsStateChange(int state) {
    state_->writeInteger(R"({"call":"gpsStateChange:","state":)", state);
}

void CallLogWriter::startSending(const void * /*sender*/, int kind, const Dictionary *extra) {
    state_->writeStartCall(R"({"call":"startSending:kind:extra:","kind":)", kind, extra);
}

void CallLogWriter::sendProgress(int count) {
    state_->writeInteger(R"({"call":"sendProgress:","count":)", count);
}

void CallLogWriter::endSending(int kind) {
    state_->writeInteger(R"({"call":"endSending:","kind":)", kind);
}

void CallLogWriterState::writePointCall(std::string_view beginning, const GPSPoint &point,
                                        const Dictionary *extra) {
    text.raw(beginning);
    text.point(point);
    writeDictionary(R"(,"extra":)", extra);
}

void CallLogWriterState::writeStartCall(std::string_view beginning, int kind,
                                        const Dictionary *extra) {
    text.raw(beginning);
    text.integer(kind);
    writeDictionary(R"(,"extra":)", extra);
}

void CallLogWriterState::writeDictionary(std::string_view beginning, const Dictionary *extra) {
    text.raw(beginning);
    text.dictionary(extra);
    text.raw("}\n");
}

void CallLogWriterState::writeInteger(std::string_view beginning, int value) {
    text.raw(beginning);
    text.integer(value);
    text.raw("}\n");
}

void CallLogWriterState::writeReport(std::string_view beginning, const Report &report) {
    text.raw(beginning);
    text.report(report);
    text.raw("}\n");
    observers.report(report);
}

} // namespace pelluvia
