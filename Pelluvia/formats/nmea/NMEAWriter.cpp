// SPDX-License-Identifier: MIT

#include <Pelluvia/formats/nmea/NMEAWriter.h>

#include <Pelluvia/formats/nmea/write/NameTable.h>
#include <Pelluvia/formats/nmea/write/PointSentences.h>
#include <Pelluvia/formats/nmea/write/RouteSentences.h>

#include <Pelluvia/model/ExtrasKeys.h>
#include <Pelluvia/model/ReceiverObservers.h>
#include <Pelluvia/model/TransferKind.h>
#include <Pelluvia/nmea/NMEAUtils.h>

#include <optional>
#include <string_view>
#include <vector>

namespace pelluvia {

using namespace nmea; // what stands below this folder

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

std::string textOf(const NMEAOmissions &omissions) {
    std::string text;
    addIfAny(text, omissions.points, "point", "points", "without a position on the globe");
    addIfAny(text, omissions.times, "time", "times", "before 1970 or after 2069");
    addIfAny(text, omissions.values, "altitude or speed", "altitudes or speeds", "that cannot be");
    addIfAny(text, omissions.routePoints, "point", "points", "of a route with too many");
    if (omissions.names != 0) {
        text.append(text.empty() ? "" : "; ").append(std::to_string(omissions.names));
        text.append(omissions.names == 1 ? " name" : " names");
        text.append(" behind the first ").append(std::to_string(NameTable::mostNames));
        text.append(" made unique by a number");
    }
    return text;
}

struct NMEAWriterState {
    /// The route that is open.
    struct Route {
        std::string identifier;
        std::vector<std::string> names;
    };

    explicit NMEAWriterState(std::unique_ptr<OutputFile> target) : file(std::move(target)) {}

    std::unique_ptr<OutputFile> file;
    ReceiverObservers<NMEAWriter> observers;
    NameTable waypointNames{"WP"};
    NameTable routeNames{"ROUTE"};
    std::int64_t routes = 0;
    std::optional<Route> route;
    NMEAOmissions omissions;

    void writeSentence(std::string_view body);
    void writePlace(const GPSPoint &point, const Dictionary *extra, bool isInRoute);
    void endRoute();
    [[nodiscard]] bool isWritable(const GPSPoint &point);
};

std::shared_ptr<NMEAWriter> NMEAWriter::initWithPath(const std::string &path,
                                                     std::error_code &error) {
    auto file = OutputFile::open(path, error);
    return file != nullptr ? std::make_shared<NMEAWriter>(std::move(file)) : nullptr;
}

NMEAWriter::NMEAWriter(std::unique_ptr<OutputFile> file)
    : state_(std::make_unique<NMEAWriterState>(std::move(file))) {}
NMEAWriter::~NMEAWriter() = default;

void NMEAWriter::setErrorObject(MessageTarget<Report> target) {
    state_->observers.setErrorObject(std::move(target));
}
void NMEAWriter::setProgress(std::shared_ptr<GPXExporterProgress> progress) {
    state_->observers.setProgress(std::move(progress));
}

std::error_code NMEAWriter::flush() {
    return state_->file->flush();
}
std::error_code NMEAWriter::close() {
    state_->endRoute();
    return state_->file->close();
}
std::error_code NMEAWriter::failure() const noexcept {
    return state_->file->failure();
}
const NMEAOmissions &NMEAWriter::omissions() const noexcept {
    return state_->omissions;
}

void NMEAWriter::newTrack(const Dictionary * /*extra*/) {
    state_->endRoute();
}

void NMEAWriter::newRoute(const Dictionary *extra) {
    state_->endRoute();
    // No two routes are the same.
    const std::string identity = std::to_string(++state_->routes);
    NameTable::Entry entry = state_->routeNames.nameFor(routeNameIn(extra), identity);
    state_->omissions.names += entry.isBeyond ? 1 : 0;
    state_->route = NMEAWriterState::Route{std::move(entry.name), {}};
}

void NMEAWriter::trackPoint(GPSPoint point, const Dictionary *extra) {
    state_->endRoute();
    if (state_->isWritable(point)) {
        const auto number = numberUnder(extras::speed, extra);
        const auto speed = number ? std::optional(number->floatValue()) : std::nullopt;
        state_->writeSentence(rmcBody(point, speed));
        state_->writeSentence(ggaBody(point));
        state_->omissions.times += point.time != 0 && !isTellable(point.time) ? 1 : 0;
        state_->omissions.values += point.altitude != 0.0 && !isAltitude(point.altitude) ? 1 : 0;
        state_->omissions.values += speed && !isSpeed(*speed) ? 1 : 0;
    }
    state_->observers.countItem();
}

void NMEAWriter::wayPoint(GPSPoint point, const Dictionary *extra) {
    state_->writePlace(point, extra, state_->route.has_value());
    state_->observers.countItem();
}

void NMEAWriter::routePoint(GPSPoint point, const Dictionary *extra) {
    if (state_->route) {
        state_->writePlace(point, extra, true);
    }
    state_->observers.countItem();
}

void NMEAWriterState::writePlace(const GPSPoint &point, const Dictionary *extra, bool isInRoute) {
    if (!isWritable(point)) {
        return;
    }
    if (isInRoute && route->names.size() == mostRouteNames) {
        ++omissions.routePoints;
        return;
    }
    const std::string position = positionFields(point);
    NameTable::Entry entry = waypointNames.nameFor(textUnder(extras::name, extra), position);
    omissions.names += entry.isBeyond ? 1 : 0;
    if (entry.isNew || !isInRoute) {
        writeSentence(wplBody(position, entry.name));
    }
    if (isInRoute) {
        route->names.push_back(std::move(entry.name));
    }
}

void NMEAWriterState::endRoute() {
    if (!route) {
        return;
    }
    for (const std::string &body : routeSentences(route->identifier, route->names)) {
        writeSentence(body);
    }
    route.reset();
}

void NMEAWriter::startTransfer(const void * /*sender*/, int kind, const Dictionary *extra) {
    const auto self = weak_from_this().lock(); // the observer may let go of the last reference
    state_->observers.tellStart(kind, extra);
}

void NMEAWriter::endTransfer(int kind) {
    const auto self = weak_from_this().lock();
    state_->observers.tellEnd(kind);
    state_->observers.resetCount();
    if (kind == transferKind::routes) {
        state_->endRoute();
    }
}

void NMEAWriter::warning(const Report &object) {
    state_->observers.report(object);
}

void NMEAWriter::error(const Report &error) {
    warning(error);
}

void NMEAWriter::gpsStateChange(int state) {
    if (state == gpsState::finished) {
        state_->endRoute();
    }
}

bool NMEAWriterState::isWritable(const GPSPoint &point) {
    omissions.points += isOnGlobe(point) ? 0 : 1;
    return isOnGlobe(point);
}

// It changes the file.
// NOLINTNEXTLINE(readability-make-member-function-const)
void NMEAWriterState::writeSentence(std::string_view body) {
    // Bodies are ASCII by their making.
    file->write(NMEAUtils::addChecksumToNMEASentence(body).value_or(""));
    file->write("\r\n");
}

} // namespace pelluvia
