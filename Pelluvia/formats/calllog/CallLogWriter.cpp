#include <Pelluvia/formats/calllog/CallLogWriter.h>

#include <Pelluvia/model/ExtrasKeys.h>

#include <climits>

namespace pelluvia {

std::shared_ptr<CallLogWriter> CallLogWriter::initWithPath(const std::string &path,
                                                           std::error_code &error) {
    auto file = OutputFile::open(path, error);
    return file != nullptr ? std::make_shared<CallLogWriter>(std::move(file)) : nullptr;
}

CallLogWriter::CallLogWriter(std::unique_ptr<OutputFile> file)
    : file_(std::move(file)), text_(*file_) {}

std::error_code CallLogWriter::close() {
    return file_->close();
}

void CallLogWriter::newTrackSegment() {
    text_.raw("{\"call\":\"newTrackSegment\"}\n");
}

void CallLogWriter::newTrack(const Dictionary *extra) {
    writeDictionary(R"({"call":"newTrack:","extra":)", extra);
}

void CallLogWriter::newRoute(const Dictionary *extra) {
    writeDictionary(R"({"call":"newRoute:","extra":)", extra);
}

void CallLogWriter::trackPoint(GPSPoint point, const Dictionary *extra) {
    writePointCall(R"({"call":"trackPoint:extra:","point":)", point, extra);
    countPoint();
}

void CallLogWriter::wayPoint(GPSPoint point, const Dictionary *extra) {
    writePointCall(R"({"call":"wayPoint:extra:","point":)", point, extra);
    countPoint();
}

void CallLogWriter::routePoint(GPSPoint point, const Dictionary *extra) {
    writePointCall(R"({"call":"routePoint:extra:","point":)", point, extra);
    countPoint();
}

void CallLogWriter::poiPoint(GPSPoint point, const Dictionary *extra) {
    writePointCall(R"({"call":"poiPoint:extra:","point":)", point, extra);
}

void CallLogWriter::lapInfoStart(GPSPoint start, GPSPoint end, const Dictionary *extras) {
    text_.raw(R"({"call":"lapInfoStart:end:extras:","start":)");
    text_.point(start);
    text_.raw(R"(,"end":)");
    text_.point(end);
    writeDictionary(R"(,"extras":)", extras);
}

void CallLogWriter::startTransfer(const void * /*sender*/, int kind, const Dictionary *extra) {
    writeStartCall(R"({"call":"startTransfer:kind:extra:","kind":)", kind, extra);
    transferKind_ = kind;
    if (progress_ != nullptr) {
        const auto count = extra != nullptr ? extra->number(extras::count) : std::nullopt;
        progress_->gpxStartTransfer(kind, count ? count->intValue() : 0);
    }
}

void CallLogWriter::endTransfer(int kind) {
    writeInteger(R"({"call":"endTransfer:","kind":)", kind);
    if (progress_ != nullptr) {
        progress_->gpxEndTransfer(kind);
    }
    itemCount_ = 0;
}

void CallLogWriter::currentPosition(GPSPoint point, int accuracy) {
    text_.raw(R"({"call":"currentPosition:accuracy:","point":)");
    text_.point(point);
    writeInteger(R"(,"accuracy":)", accuracy);
}

void CallLogWriter::warning(const Report &object) {
    writeReport(R"({"call":"warning:","object":)", object);
}

void CallLogWriter::error(const Report &error) {
    writeReport(R"({"call":"error:","error":)", error);
}

void CallLogWriter::gpsStateChange(int state) {
    writeInteger(R"({"call":"gpsStateChange:","state":)", state);
}

void CallLogWriter::startSending(const void * /*sender*/, int kind, const Dictionary *extra) {
    writeStartCall(R"({"call":"startSending:kind:extra:","kind":)", kind, extra);
}

void CallLogWriter::sendProgress(int count) {
    writeInteger(R"({"call":"sendProgress:","count":)", count);
}

void CallLogWriter::endSending(int kind) {
    writeInteger(R"({"call":"endSending:","kind":)", kind);
}

void CallLogWriter::writePointCall(std::string_view beginning, const GPSPoint &point,
                                   const Dictionary *extra) {
    text_.raw(beginning);
    text_.point(point);
    writeDictionary(R"(,"extra":)", extra);
}

void CallLogWriter::writeStartCall(std::string_view beginning, int kind, const Dictionary *extra) {
    text_.raw(beginning);
    text_.integer(kind);
    writeDictionary(R"(,"extra":)", extra);
}

void CallLogWriter::writeDictionary(std::string_view beginning, const Dictionary *extra) {
    text_.raw(beginning);
    text_.dictionary(extra);
    text_.raw("}\n");
}

void CallLogWriter::writeInteger(std::string_view beginning, int value) {
    text_.raw(beginning);
    text_.integer(value);
    text_.raw("}\n");
}

void CallLogWriter::writeReport(std::string_view beginning, const Report &report) {
    text_.raw(beginning);
    text_.report(report);
    text_.raw("}\n");
    mainThread::perform(errorObject_, errorSelector_, report);
}

void CallLogWriter::countPoint() {
    if (itemCount_ < INT_MAX) {
        ++itemCount_;
    }
    if (progress_ != nullptr) {
        progress_->gpxProgress(transferKind_, itemCount_);
    }
}

} // namespace pelluvia
