#include <Pelluvia/gpximport/CollectedPoint.h>

#include <Pelluvia/platform/Scanner.h>

#include <cstring>

namespace pelluvia {

namespace {

std::int64_t timeValue(std::string_view text, ISO8601Day &day) noexcept {
    Scanner scanner(text);
    return scanISO8601DateAsSeconds(scanner, day).value_or(0);
}

} // namespace

bool CollectedPoint::Waiting::keep(std::string_view text) noexcept {
    if (text.empty() || text.size() > bytes_.size()) {
        size_ = 0;
        return false;
    }
    std::memcpy(bytes_.data(), text.data(), text.size());
    size_ = static_cast<std::uint8_t>(text.size());
    return true;
}

void CollectedPoint::setPosition(std::string_view latitude, std::string_view longitude) noexcept {
    if (!longitude_.keep(longitude)) {
        point_.longitude = doubleValue(longitude);
    }
    if (!latitude_.keep(latitude)) {
        point_.latitude = doubleValue(latitude);
    }
}

void CollectedPoint::setAltitude(std::string_view text) noexcept {
    if (!altitude_.keep(text)) {
        point_.altitude = doubleValue(text);
    }
}

void CollectedPoint::setTime(std::string_view text) noexcept {
    if (!time_.keep(text)) {
        point_.time = timeValue(text, day_);
    }
}

const GPSPoint &CollectedPoint::read() noexcept {
    const auto readInto = [](double &value, Waiting &waiting) {
        if (!waiting.text().empty()) {
            value = doubleValue(waiting.text());
            waiting.clear();
        }
    };
    readInto(point_.latitude, latitude_);
    readInto(point_.longitude, longitude_);
    readInto(point_.altitude, altitude_);
    if (!time_.text().empty()) {
        point_.time = timeValue(time_.text(), day_);
        time_.clear();
    }
    return point_;
}

} // namespace pelluvia
