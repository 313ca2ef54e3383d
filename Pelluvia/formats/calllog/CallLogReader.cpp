// SPDX-License-Identifier: MIT

#include <Pelluvia/formats/calllog/CallLogReader.h>

#include <Pelluvia/formats/calllog/internal/CallArguments.h>
#include <Pelluvia/formats/calllog/internal/CallLine.h>
#include <Pelluvia/formats/calllog/internal/CallLineParser.h>
#include <Pelluvia/formats/calllog/internal/CallLogLimits.h>
#include <Pelluvia/formats/calllog/internal/CallValues.h>
#include <Pelluvia/formats/calllog/internal/LineReader.h>
#include <Pelluvia/formats/calllog/internal/TextLines.h>
#include <Pelluvia/formats/internal/Errors.h>
#include <Pelluvia/formats/internal/OpenSource.h>
#include <Pelluvia/formats/internal/SourceProgress.h>
#include <Pelluvia/formats/internal/SourceWait.h>
#include <Pelluvia/formats/internal/StoppableReceiver.h>

#include <Pelluvia/values/CocoaErrors.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <utility>

namespace pelluvia {

namespace {

using Arguments = CallArguments;
using Receiver = GPSOutputReceiver;
using Field = CallField;

/// A call by its name, and how it is made: take every argument, then, if nothing was wrong with
/// them, call.
struct CallShape {
    std::string_view name;
    void (*make)(Arguments &arguments, Receiver &receiver);
};

template <void (Receiver::*call)(GPSPoint, const Dictionary *)>
void makePointCall(Arguments &arguments, Receiver &receiver) {
    const GPSPoint point = arguments.point(Field::Point);
    const Dictionary *extra = arguments.dictionary(Field::Extra);
    if (arguments.areComplete()) {
        (receiver.*call)(point, extra);
    }
}

template <void (Receiver::*call)(const Dictionary *)>
void makeDictionaryCall(Arguments &arguments, Receiver &receiver) {
    const Dictionary *extra = arguments.dictionary(Field::Extra);
    if (arguments.areComplete()) {
        (receiver.*call)(extra);
    }
}

template <void (Receiver::*call)(const void *, int, const Dictionary *)>
void makeStartCall(Arguments &arguments, Receiver &receiver) {
    const int kind = arguments.int32(Field::Kind);
    const Dictionary *extra = arguments.dictionary(Field::Extra);
    if (arguments.areComplete()) {
        (receiver.*call)(nullptr, kind, extra);
    }
}

template <void (Receiver::*call)(int), Field field>
void makeIntegerCall(Arguments &arguments, Receiver &receiver) {
    const int value = arguments.int32(field);
    if (arguments.areComplete()) {
        (receiver.*call)(value);
    }
}

template <void (Receiver::*call)(const Report &), Field field>
void makeReportCall(Arguments &arguments, Receiver &receiver) {
    const Report report = arguments.report(field);
    if (arguments.areComplete()) {
        (receiver.*call)(report);
    }
}

void makeSegmentCall(Arguments &arguments, Receiver &receiver) {
    if (arguments.areComplete()) {
        receiver.newTrackSegment();
    }
}

void makeLapCall(Arguments &arguments, Receiver &receiver) {
    const GPSPoint start = arguments.point(Field::Start);
    const GPSPoint end = arguments.point(Field::End);
    const Dictionary *extras = arguments.dictionary(Field::Extras);
    if (arguments.areComplete()) {
        receiver.lapInfoStart(start, end, extras);
    }
}

void makePositionCall(Arguments &arguments, Receiver &receiver) {
    const GPSPoint point = arguments.point(Field::Point);
    const int accuracy = arguments.int32(Field::Accuracy);
    if (arguments.areComplete()) {
        receiver.currentPosition(point, accuracy);
    }
}

constexpr auto calls = std::to_array<CallShape>({
    {"trackPoint:extra:", makePointCall<&Receiver::trackPoint>},
    {"wayPoint:extra:", makePointCall<&Receiver::wayPoint>},
    {"routePoint:extra:", makePointCall<&Receiver::routePoint>},
    {"poiPoint:extra:", makePointCall<&Receiver::poiPoint>},
    {"newTrackSegment", makeSegmentCall},
    {"newTrack:", makeDictionaryCall<&Receiver::newTrack>},
    {"newRoute:", makeDictionaryCall<&Receiver::newRoute>},
    {"lapInfoStart:end:extras:", makeLapCall},
    {"startTransfer:kind:extra:", makeStartCall<&Receiver::startTransfer>},
    {"endTransfer:", makeIntegerCall<&Receiver::endTransfer, Field::Kind>},
    {"currentPosition:accuracy:", makePositionCall},
    {"warning:", makeReportCall<&Receiver::warning, Field::Object>},
    {"error:", makeReportCall<&Receiver::error, Field::Error>},
    {"gpsStateChange:", makeIntegerCall<&Receiver::gpsStateChange, Field::State>},
    {"startSending:kind:extra:", makeStartCall<&Receiver::startSending>},
    {"sendProgress:", makeIntegerCall<&Receiver::sendProgress, Field::Count>},
    {"endSending:", makeIntegerCall<&Receiver::endSending, Field::Kind>},
});

std::optional<CallLineFault> makeCall(const CallLine &line, Receiver &receiver) {
    const std::optional<Value> &call = line[Field::Call];
    const auto name = call ? call->string() : std::nullopt;
    if (!name) {
        return CallLineFault{.message = call ? R"("call" must be a string)" : R"(no field "call")"};
    }
    const auto *const shape = std::find_if(
        calls.begin(), calls.end(), [&name](const CallShape &each) { return each.name == *name; });
    if (shape == calls.end()) {
        return CallLineFault{.message = "unknown call " + inQuotes(*name)};
    }
    Arguments arguments(line, shape->name);
    shape->make(arguments, receiver);
    return arguments.fault();
}

bool isBlank(std::string_view line) noexcept {
    return line.find_first_not_of(" \t\r") == std::string_view::npos;
}

/// An error on a line of a log.
ErrorPtr errorAt(std::int64_t line, CallLineFault fault, std::string_view domain, std::int64_t code,
                 const std::string &path) {
    ErrorInfo info{{std::string(NSLocalizedDescriptionKey), std::move(fault.message)}};
    if (!path.empty()) {
        info.emplace_back(std::string(NSFilePathErrorKey), path);
    }
    info.emplace_back(std::string(callLogErrorLine), line);
    if (fault.column != 0) {
        info.emplace_back(std::string(callLogErrorColumn), fault.column);
    }
    return Error::make(domain, code, std::move(info));
}

ErrorPtr badLine(std::int64_t line, CallLineFault fault, const std::string &path) {
    return errorAt(line, std::move(fault), NSCocoaErrorDomain, NSFileReadCorruptFileError, path);
}

} // namespace

struct CallLogReaderState {
    explicit CallLogReaderState(GPSOutputReceiver &target) noexcept : receiver(target) {}

    GPSOutputReceiver &receiver;
    std::stop_token stopToken;
    std::function<void()> sourcePaused;
    formats::SourceProgress progress;

    ErrorPtr process(LineSource &lines, const std::string &path);
    ErrorPtr processDescriptor(int descriptor, const std::string &path);
};

CallLogReader::CallLogReader(GPSOutputReceiver &receiver)
    : state_(std::make_unique<CallLogReaderState>(receiver)) {}
CallLogReader::~CallLogReader() = default;

void CallLogReader::setStopToken(std::stop_token token) {
    state_->stopToken = std::move(token);
}
void CallLogReader::setSourcePaused(std::function<void()> sourcePaused) {
    state_->sourcePaused = std::move(sourcePaused);
}
ReadingProgress CallLogReader::readingProgress() const {
    return state_->progress.progress();
}

ErrorPtr CallLogReader::processFile(const std::string &path) {
    std::error_code error;
    const formats::OpenSource source(path, error);
    if (error) {
        state_->progress = {};
        return formats::systemError(error, error.message(), path);
    }
    return state_->processDescriptor(source.descriptor(), path);
}

ErrorPtr CallLogReader::processDescriptor(int descriptor) {
    return state_->processDescriptor(descriptor, "");
}

ErrorPtr CallLogReader::processText(std::string_view log) {
    state_->progress = formats::SourceProgress(log.size());
    TextLines lines(log, callLogLimits::lineSize, state_->progress);
    return state_->process(lines, "");
}

ErrorPtr CallLogReaderState::processDescriptor(int descriptor, const std::string &path) {
    progress = formats::SourceProgress(descriptor);
    const formats::SourceWait wait(-1, stopToken, sourcePaused);
    LineReader lines(descriptor, callLogLimits::lineSize, wait, progress);
    return process(lines, path);
}

ErrorPtr CallLogReaderState::process(LineSource &lines, const std::string &path) {
    formats::StoppableReceiver stoppable(receiver, stopToken);
    CallLine call;
    std::string_view text;
    for (std::int64_t number = 1; !stoppable.hasStopped(); ++number) {
        switch (lines.next(text)) {
        case LineSource::Result::End:
            return nullptr;
        case LineSource::Result::Stopped:
            continue; // the receiver will find it out
        case LineSource::Result::Failed:
            return errorAt(number, {.message = lines.failure().message()},
                           formats::posixErrorDomain, lines.failure().value(), path);
        case LineSource::Result::TooLong:
            return badLine(number,
                           {.message = "a line is longer than " +
                                       std::to_string(callLogLimits::lineSize) + " bytes"},
                           path);
        case LineSource::Result::Line:
            break;
        }
        if (isBlank(text)) {
            continue;
        }
        auto fault = parseCallLine(text, call);
        if (!fault) {
            fault = makeCall(call, stoppable);
        }
        if (fault) {
            return badLine(number, std::move(*fault), path);
        }
    }
    return formats::stopError();
}

bool looksLikeCallLog(std::string_view beginning) {
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    if (beginning.starts_with(byteOrderMark)) {
        beginning.remove_prefix(byteOrderMark.size());
    }
    const std::size_t start = beginning.find_first_not_of(" \t\r\n");
    if (start == std::string_view::npos || beginning[start] != '{') {
        return false;
    }
    std::string_view line = beginning.substr(start);
    line = line.substr(0, line.find('\n'));
    constexpr std::string_view name = "\"call\"";
    const std::size_t field = line.find(name);
    if (field == std::string_view::npos) {
        return false;
    }
    line.remove_prefix(field + name.size());
    const std::size_t colon = line.find_first_not_of(" \t");
    return colon != std::string_view::npos && line[colon] == ':';
}

} // namespace pelluvia
