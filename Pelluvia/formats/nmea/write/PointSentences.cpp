// SPDX-License-Identifier: MIT

#include <Pelluvia/formats/nmea/write/PointSentences.h>

#include <Pelluvia/nmea/NMEAUtils.h>
#include <Pelluvia/text/NumberText.h>

#include <array>
#include <cmath>

namespace pelluvia::nmea {

namespace {

constexpr double knotsOfMetresASecond = 3600.0 / 1852.0;

constexpr double largestAltitude = 1'000'000.0;
constexpr float largestSpeed = 100'000.0F;

constexpr std::int64_t endOfTellableTime = 3'155'760'000; // 2070-01-01

std::string thousandths(double value) {
    std::array<char, maxFixedText> text; // NOLINT(*-member-init): written before it is read
    return {text.data(), writePaddedFixed(text.data(), value, 3, 0)};
}

/// The fields of a time: hhmmss.00 and ddmmyy, both empty without one.
struct TimeFields {
    std::string time;
    std::string date;
};

TimeFields timeFields(std::int64_t time) {
    TimeFields fields;
    if (isTellable(time)) {
        fields.date = NMEAUtils::makeNMEADateFrom(time, &fields.time);
    }
    return fields;
}

} // namespace

bool isOnGlobe(const GPSPoint &point) noexcept {
    // Comparisons with NaN are false.
    return std::abs(point.latitude) <= 90.0 && std::abs(point.longitude) <= 180.0;
}

bool isTellable(std::int64_t time) noexcept {
    return time > 0 && time < endOfTellableTime;
}

bool isAltitude(double metres) noexcept {
    return std::abs(metres) <= largestAltitude;
}

bool isSpeed(float metresASecond) noexcept {
    return metresASecond >= 0.0F && metresASecond <= largestSpeed;
}

std::string positionFields(const GPSPoint &point) {
    char direction = '\0';
    std::string fields =
        NMEAUtils::convertDegreesToNMEADegreesMinutes(point.latitude, true, &direction);
    fields.append(",").push_back(direction);
    fields.append(",").append(
        NMEAUtils::convertDegreesToNMEADegreesMinutes(point.longitude, false, &direction));
    fields.append(",").push_back(direction);
    return fields;
}

std::string rmcBody(const GPSPoint &point, std::optional<float> speed) {
    const TimeFields fields = timeFields(point.time);
    std::string body = "GPRMC,";
    body.append(fields.time).append(",A,").append(positionFields(point)).append(",");
    if (speed && isSpeed(*speed)) {
        body.append(thousandths(double{*speed} * knotsOfMetresASecond));
    }
    return body.append(",,").append(fields.date).append(",,,A");
}

std::string ggaBody(const GPSPoint &point) {
    std::string body = "GPGGA,";
    body.append(timeFields(point.time).time).append(",").append(positionFields(point));
    body.append(",1,,,");
    if (point.altitude != 0.0 && isAltitude(point.altitude)) {
        body.append(thousandths(point.altitude));
    }
    return body.append(",M,,M,,");
}

std::string wplBody(std::string_view positionFields, std::string_view name) {
    return std::string("GPWPL,").append(positionFields).append(",").append(name);
}

} // namespace pelluvia::nmea
