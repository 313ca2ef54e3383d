// SPDX-License-Identifier: MIT

#include <tools/pelluvia/commands/FileSurvey.h>

#include <Pelluvia/text/Scanner.h>

#include <algorithm>
#include <optional>

namespace pelluvia::host {

namespace {

/// Longer than any date and time.
constexpr std::size_t longestTime = 100;

/// The number that an attribute holds.
std::optional<double> coordinate(const XMLAttributes &attributes, std::uint16_t name) {
    const auto text = attributes.value(name);
    return text ? Scanner(*text).scanDouble() : std::nullopt;
}

} // namespace

FileSurvey::FileSurvey()
    : counter_(survey_.counter.get()),
      names_(counter_->vocabulary().names.begin(), counter_->vocabulary().names.end()),
      wpt_(number("wpt")),
      rtept_(number("rtept")),
      trkpt_(number("trkpt")),
      time_(number("time")),
      lat_(number("lat")),
      lon_(number("lon")) {
    for (std::size_t name = 0; name <= names_.size(); ++name) {
        XMLElement element;
        element.nameNumber = static_cast<std::uint16_t>(name);
        isCounted_.push_back(counter_->interestIn(element, {}) != XMLInterest::nothing);
    }
}

/// The number of a name in the vocabulary, to which it is added when it is not there.
std::uint16_t FileSurvey::number(std::string_view name) {
    const auto found = std::find(names_.begin(), names_.end(), name);
    const auto position = found - names_.begin();
    if (found == names_.end()) {
        names_.push_back(name);
    }
    return static_cast<std::uint16_t>(position + 1);
}

XMLVocabulary FileSurvey::vocabulary() const {
    return {.names = names_, .namespaces = counter_->vocabulary().namespaces};
}

XMLInterest FileSurvey::interestIn(const XMLElement &element,
                                   std::span<const XMLElement> around) const {
    if (element.nameNumber == time_ && !around.empty() && isPoint(around.back())) {
        return XMLInterest::all;
    }
    return isPoint(element) || isCounted_[element.nameNumber] ? XMLInterest::tags
                                                              : XMLInterest::nothing;
}

bool FileSurvey::isPoint(const XMLElement &element) const noexcept {
    const std::uint16_t name = element.nameNumber;
    return name != 0 && (name == trkpt_ || name == wpt_ || name == rtept_);
}

void FileSurvey::didStartElement(XMLParser &parser, const XMLElement &element,
                                 const XMLAttributes &attributes) {
    if (isCounted_[element.nameNumber]) {
        counter_->didStartElement(parser, element, attributes);
    }
    if (timeDepth_ != 0) {
        ++timeDepth_;
    } else if (element.nameNumber == time_) {
        timeDepth_ = 1;
        timeText_.clear();
    }
    if (isPoint(element)) {
        survey_.trackPoints += element.nameNumber == trkpt_ ? 1 : 0;
        addPosition(attributes);
    }
}

void FileSurvey::didEndElement(XMLParser & /*parser*/, const XMLElement & /*element*/) {
    if (timeDepth_ != 0 && --timeDepth_ == 0) {
        addTime();
    }
}

void FileSurvey::foundCharacters(XMLParser & /*parser*/, std::string_view characters) {
    if (timeText_.size() < longestTime) {
        timeText_ += characters.substr(0, longestTime - timeText_.size());
    }
}

void FileSurvey::addPosition(const XMLAttributes &attributes) {
    const auto latitude = coordinate(attributes, lat_);
    const auto longitude = coordinate(attributes, lon_);
    if (latitude && longitude) {
        survey_.addPosition(*latitude, *longitude);
    }
}

void FileSurvey::addTime() {
    Scanner scanner(timeText_);
    const auto time = scanISO8601DateAsSeconds(scanner, day_);
    if (time) {
        survey_.addTime(*time);
    }
}

} // namespace pelluvia::host
