#include <Pelluvia/formats/calllog/CallLogReader.h>

#include <Pelluvia/formats/calllog/internal/CallArguments.h>
#include <Pelluvia/formats/calllog/internal/CallLine.h>
#include <Pelluvia/formats/calllog/internal/CallLogLimits.h>
#include <Pelluvia/formats/calllog/internal/CallValues.h>
#include <Pelluvia/formats/calllog/internal/LineReader.h>

#include <algorithm>
#include <array>

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

} // namespace

std::optional<CallLogFault> CallLogReader::read(int descriptor) {
    LineReader lines(descriptor, callLogLimits::lineSize);
    CallLine call;
    std::string_view text;
    for (std::int64_t number = 1; !stop_ || !stop_(); ++number) {
        switch (lines.next(text)) {
        case LineReader::Result::End:
            return std::nullopt;
        case LineReader::Result::Failed:
            return CallLogFault{.line = number, .message = lines.failure().message()};
        case LineReader::Result::TooLong:
            return CallLogFault{.line = number,
                                .message = "a line is longer than " +
                                           std::to_string(callLogLimits::lineSize) + " bytes"};
        case LineReader::Result::Line:
            break;
        }
        if (isBlank(text)) {
            continue;
        }
        auto fault = call.parse(text);
        if (!fault) {
            fault = makeCall(call, receiver_);
        }
        if (fault) {
            return CallLogFault{
                .line = number, .column = fault->column, .message = std::move(fault->message)};
        }
    }
    return std::nullopt;
}

} // namespace pelluvia
