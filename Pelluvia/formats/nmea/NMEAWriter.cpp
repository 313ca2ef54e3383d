#include <Pelluvia/formats/nmea/NMEAWriter.h>

#include <Pelluvia/formats/nmea/write/PointSentences.h>
#include <Pelluvia/formats/nmea/write/RouteSentences.h>

#include <Pelluvia/model/ExtrasKeys.h>
#include <Pelluvia/model/TransferKind.h>
#include <Pelluvia/nmea/NMEAUtils.h>

#include <limits>

namespace pelluvia::nmea {

namespace {

std::string_view textUnder(const Key &key, const Dictionary *extra) {
    return extra != nullptr ? extra->string(key).value_or("") : std::string_view();
}

std::optional<Number> numberUnder(const Key &key, const Dictionary *extra) {
    return extra != nullptr ? extra->number(key) : std::nullopt;
}

/// The name of a route, or without one its number.
std::string routeNameIn(const Dictionary *extra) {
    const std::string_view name = textUnder(extras::name, extra);
    if (!safeName(name).empty()) {
        return std::string(name);
    }
    for (const Key &key : {extras::routeNumber, extras::index}) {
        if (const auto number = numberUnder(key, extra)) {
            return std::to_string(number->intValue());
        }
    }
    return {};
}

/// Adds a count and what it counts: the one thing, or the many.
void addIfAny(std::string &text, std::int64_t count, std::string_view one, std::string_view many,
              std::string_view rest) {
    if (count != 0) {
        text.append(text.empty() ? "left out: " : ", ");
        text.append(std::to_string(count)).append(" ").append(count == 1 ? one : many);
        text.append(" ").append(rest);
    }
}

} // namespace

std::string textOf(const Omissions &omissions) {
    std::string text;
    addIfAny(text, omissions.points, "point", "points", "without a position on the globe");
    addIfAny(text, omissions.times, "time", "times", "before 1970 or after 2069");
    addIfAny(text, omissions.values, "altitude or speed", "altitudes or speeds", "that cannot be");
    addIfAny(text, omissions.routePoints, "point", "points", "of a route with too many");
    return text;
}

std::shared_ptr<NMEAWriter> NMEAWriter::initWithPath(const std::string &path,
                                                     std::error_code &error) {
    auto file = OutputFile::open(path, error);
    return file != nullptr ? std::make_shared<NMEAWriter>(std::move(file)) : nullptr;
}

std::error_code NMEAWriter::close() {
    endRoute();
    return file_->close();
}

void NMEAWriter::newTrack(const Dictionary * /*extra*/) {
    endRoute();
}

void NMEAWriter::newRoute(const Dictionary *extra) {
    endRoute();
    // No two routes are the same.
    const std::string identity = std::to_string(++routes_);
    route_ = Route{routeNames_.nameFor(routeNameIn(extra), identity).name, {}};
}

void NMEAWriter::trackPoint(GPSPoint point, const Dictionary *extra) {
    endRoute();
    if (isWritable(point)) {
        const auto number = numberUnder(extras::speed, extra);
        const auto speed = number ? std::optional(number->floatValue()) : std::nullopt;
        writeSentence(rmcBody(point, speed));
        writeSentence(ggaBody(point));
        omissions_.times += point.time != 0 && !isTellable(point.time) ? 1 : 0;
        omissions_.values += point.altitude != 0.0 && !isAltitude(point.altitude) ? 1 : 0;
        omissions_.values += speed && !isSpeed(*speed) ? 1 : 0;
    }
    countPoint();
}

void NMEAWriter::wayPoint(GPSPoint point, const Dictionary *extra) {
    writePlace(point, extra, route_.has_value());
    countPoint();
}

void NMEAWriter::routePoint(GPSPoint point, const Dictionary *extra) {
    if (route_) {
        writePlace(point, extra, true);
    }
    countPoint();
}

void NMEAWriter::writePlace(const GPSPoint &point, const Dictionary *extra, bool isInRoute) {
    if (!isWritable(point)) {
        return;
    }
    if (isInRoute && route_->names.size() == mostRouteNames) {
        ++omissions_.routePoints;
        return;
    }
    const std::string position = positionFields(point);
    NameTable::Entry entry = waypointNames_.nameFor(textUnder(extras::name, extra), position);
    if (entry.isNew || !isInRoute) {
        writeSentence(wplBody(position, entry.name));
    }
    if (isInRoute) {
        route_->names.push_back(std::move(entry.name));
    }
}

void NMEAWriter::endRoute() {
    if (!route_) {
        return;
    }
    for (const std::string &body : routeSentences(route_->identifier, route_->names)) {
        writeSentence(body);
    }
    route_.reset();
}

void NMEAWriter::startTransfer(const void * /*sender*/, int kind, const Dictionary *extra) {
    transferKind_ = kind;
    if (progress_) {
        const auto count = numberUnder(extras::count, extra);
        progress_->gpxStartTransfer(kind, count ? count->intValue() : 0);
    }
}

void NMEAWriter::endTransfer(int kind) {
    if (progress_) {
        progress_->gpxEndTransfer(kind);
    }
    itemCount_ = 0;
    if (kind == transferKind::routes) {
        endRoute();
    }
}

void NMEAWriter::warning(const Report &object) {
    mainThread::perform(errorObject_, errorSelector_, object);
}

void NMEAWriter::error(const Report &error) {
    warning(error);
}

void NMEAWriter::gpsStateChange(int state) {
    if (state == gpsState::finished) {
        endRoute();
    }
}

void NMEAWriter::countPoint() {
    itemCount_ += itemCount_ < std::numeric_limits<int>::max() ? 1 : 0;
    if (progress_) {
        progress_->gpxProgress(transferKind_, itemCount_);
    }
}

bool NMEAWriter::isWritable(const GPSPoint &point) {
    omissions_.points += isOnGlobe(point) ? 0 : 1;
    return isOnGlobe(point);
}

void NMEAWriter::writeSentence(std::string_view body) {
    // Bodies are ASCII by their making.
    file_->write(NMEAUtils::addChecksumToNMEASentence(body).value_or(""));
    file_->write("\r\n");
}

} // namespace pelluvia::nmea
