// SPDX-License-Identifier: MIT

#include <tests/gpxwriter/SampleDocuments.h>

#include <Pelluvia/gpxwriter/GPXExporter.h>
#include <Pelluvia/model/ExtrasKeys.h>

#include <initializer_list>
#include <limits>
#include <stdexcept>
#include <tests/support/TemporaryFolder.h>
#include <utility>

namespace pelluvia::testing {

namespace {

using namespace std::string_view_literals;

constexpr std::int64_t start = 1591000000;

Dictionary dictionary(std::initializer_list<std::pair<Key, Value>> entries) {
    Dictionary result;
    for (const auto &[key, value] : entries) {
        result.set(key, value);
    }
    return result;
}

std::shared_ptr<GPXExporter> exporterInto(const std::string &path) {
    std::shared_ptr<GPXExporter> exporter = GPXExporter::initWithPath(path);
    if (exporter == nullptr) {
        throw std::runtime_error("cannot write " + path);
    }
    return exporter;
}

void writeEmpty(const std::string &path) {
    exporterInto(path)->gpsStateChange(gpsState::finished);
}

void writeTracks(const std::string &path) {
    const auto exporter = exporterInto(path);
    exporter->startTransfer(nullptr, transferKind::tracks, nullptr);
    const Dictionary ride = dictionary({{extras::name, Value("Morning ride"sv)},
                                        {extras::description, Value("to work & back"sv)},
                                        {extras::index, Value(7)}});
    exporter->newTrack(&ride);
    exporter->newTrackSegment();
    const Dictionary beat = dictionary({{extras::hr, Value(120)},
                                        {extras::cadence, Value(80)},
                                        {extras::temp, Value(21.9F)},
                                        {extras::distance, Value(1234.5F)},
                                        {extras::sensor, Value("Footpod"sv)},
                                        {extras::speed, Value(7.25F)}});
    exporter->trackPoint({47.1, 8.5, 430, start, 0}, &beat);
    exporter->trackPoint({180, 180, 0, start + 1, 0}, &beat);
    exporter->trackPoint({47.1002, 8.5003, 430.25, start + 2, 0}, nullptr);
    exporter->newTrackSegment();
    const Dictionary nothing;
    exporter->trackPoint({47.2, 8.6, 0, 0, 0}, &nothing);
    const Dictionary course = dictionary({{extras::courseIndex, Value(4)}});
    exporter->newTrack(&course);
    exporter->newTrackSegment();
    exporter->trackPoint({-33.123456789, -70.987654321, -1.5, start - 2'000'000'000, 0}, nullptr);
    exporter->endTransfer(transferKind::tracks);
    exporter->newTrackSegment();
    exporter->endTransfer(transferKind::tracks);
    exporter->trackPoint({1, 2, 3, 4, 5}, nullptr);
    exporter->gpsStateChange(gpsState::finished);
}

void writeRoutes(const std::string &path) {
    const auto exporter = exporterInto(path);
    exporter->startTransfer(nullptr, transferKind::routes, nullptr);
    const Dictionary imported =
        dictionary({{extras::name, Value("Tour"sv)}, {extras::index, Value(3)}});
    exporter->newRoute(&imported);
    exporter->routePoint({1, 2, 0, 0, 0}, nullptr);
    const Dictionary driven = dictionary({{extras::name, Value("Over the \"pass\""sv)},
                                          {extras::comment, Value("<steep>"sv)},
                                          {extras::routeNumber, Value(12)}});
    exporter->newRoute(&driven);
    const Dictionary place =
        dictionary({{extras::name, Value("Top"sv)}, {extras::symbol, Value("Summit"sv)}});
    exporter->wayPoint({46.5, 7.5, 2222, start, 0}, &place);
    exporter->wayPoint({46.6, 7.6, 0, 0, 0}, nullptr);
    exporter->endTransfer(transferKind::routes);
    exporter->gpsStateChange(gpsState::finished);
}

void writeWaypoints(const std::string &path) {
    const auto exporter = exporterInto(path);
    exporter->startTransfer(nullptr, transferKind::waypoints, nullptr);
    const Dictionary cache = dictionary({{extras::name, Value("GC1"sv)},
                                         {extras::comment, Value("Bob's & Eve's"sv)},
                                         {extras::symbol, Value("Geocache"sv)},
                                         {extras::type, Value("Geocache|Traditional"sv)},
                                         {extras::geocacheOwner, Value("Eve"sv)},
                                         {extras::difficulty, Value("1.5"sv)},
                                         {extras::terrain, Value("2"sv)},
                                         {extras::geocacheType, Value("Traditional Cache"sv)},
                                         {extras::proximity, Value(50)}});
    exporter->wayPoint({47.1, 8.5, 430, start, 0}, &cache);
    const Dictionary alarm =
        dictionary({{extras::name, Value("H\xC3\xBCtte"sv)}, {extras::proximity, Value(0.5F)}});
    exporter->wayPoint({47.2, 8.6, 0, 0, 0}, &alarm);
    exporter->wayPoint({-90, -180, 0, 0, 0}, nullptr);
    exporter->endTransfer(transferKind::waypoints);
    exporter->gpsStateChange(gpsState::finished);
}

void writeLaps(const std::string &path) {
    const auto exporter = exporterInto(path);
    exporter->newTrackSegment();
    exporter->trackPoint({47.1, 8.5, 0, 0, 0}, nullptr);
    const Dictionary lap = dictionary({
        {extras::index, Value(1)},
        {extras::totalTime, Value(61.5F)},
        {extras::calories, Value(55)},
        {extras::distance, Value(1000)},
        {extras::trackName, Value("A&B"sv)},
        {extras::trackIndex, Value(3)},
        {extras::trackEnd, Value(9)},
        {extras::hrAvg, Value(150)},
        {extras::hrMax, Value(180)},
        {extras::cadenceAvg, Value(85)},
        {extras::cadenceMax, Value(110)},
        {extras::speedAvg, Value(7.25F)},
        {extras::speedMax, Value(12.5F)},
        {extras::powerAvg, Value(210.0F)},
        {extras::powerMax, Value(400.0F)},
        {extras::altMin, Value(-3)},
        {extras::altMax, Value(500.5)},
        {extras::trigger, Value("manual"sv)},
        {extras::intensity, Value("active"sv)},
    });
    exporter->lapInfoStart({47.1, 8.5, 0, start, 0}, {47.2, 8.6, 0, 0, 0}, &lap);
    const Dictionary reference = dictionary({{extras::trackIndex, Value(3)}});
    exporter->lapInfoStart({91, 0, 0, 0, 0}, {91, 0, 0, 0, 0}, &reference);
    exporter->gpsStateChange(gpsState::finished);
}

void writeExtremes(const std::string &path) {
    using Double = std::numeric_limits<double>;
    const std::string longName = std::string(505, 'n') + "'&";
    const auto exporter = exporterInto(path);
    const Dictionary named = dictionary({{extras::name, Value(std::string_view(longName))},
                                         {extras::comment, Value("\x01<\x1F>"sv)},
                                         {extras::proximity, Value(1e308)}});
    exporter->wayPoint({Double::quiet_NaN(), Double::infinity(), -0.0, 0, 0}, &named);
    exporter->wayPoint({1e-300, -0.0, Double::quiet_NaN(), 1, 0}, nullptr);
    const Dictionary numbered =
        dictionary({{extras::index, Value(std::numeric_limits<int>::min())},
                    {extras::courseIndex, Value(std::numeric_limits<std::int64_t>::max())}});
    exporter->newTrack(&numbered);
    const Dictionary beat = dictionary({{extras::hr, Value(-1e300)},
                                        {extras::cadence, Value(Double::quiet_NaN())},
                                        {extras::temp, Value(-0.99F)},
                                        {extras::distance, Value(3.4028234663852886e38)}});
    const std::int64_t lastTime = std::numeric_limits<std::int64_t>::max();
    exporter->trackPoint({91, -1e308, 1e308, lastTime, 0}, &beat);
    exporter->trackPoint({91.5, 0, 1e308, 67768036191676799, 0}, &beat);
    exporter->trackPoint({-1e308, 0, 0, -67768040609740800, 0}, nullptr);
    exporter->lapInfoStart({-Double::infinity(), 0, 0, lastTime, 0}, {91, 0, 0, 0, 0}, &beat);
    exporter->gpsStateChange(gpsState::finished);
}

} // namespace

std::vector<SampleDocument> sampleDocuments() {
    return {{"empty", writeEmpty},         {"tracks", writeTracks}, {"routes", writeRoutes},
            {"waypoints", writeWaypoints}, {"laps", writeLaps},     {"extremes", writeExtremes}};
}

std::string textOf(const SampleDocument &sample) {
    const TemporaryFolder folder;
    sample.write(folder.file("out.gpx"));
    return readFile(folder.file("out.gpx"));
}

} // namespace pelluvia::testing
