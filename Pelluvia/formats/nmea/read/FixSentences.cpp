// SPDX-License-Identifier: MIT

#include <Pelluvia/formats/nmea/read/FixSentences.h>

#include <cmath>

namespace pelluvia::nmea {

namespace {

using Result = std::optional<FixSentence>;

constexpr double metresASecondOfKnot = 1852.0 / 3600.0;
constexpr double metresASecondOfKilometreAnHour = 1.0 / 3.6;

// Nothing that navigates by satellite is faster, or higher up (metres a second, metres).
constexpr double largestSpeed = 12'000.0;
constexpr double largestAltitude = 1'000'000.0;

/// Where the fields of a position and its time stand in a sentence.
struct Places {
    std::size_t time;
    std::size_t latitude; // the direction, the longitude and its direction follow
};

/// The time; false when there is one that cannot be read.
bool readTime(const Sentence &sentence, std::size_t place, FixSentence &result) noexcept {
    const std::string_view field = sentence.field(place);
    result.time = readTimeOfDay(field);
    return field.empty() || result.time;
}

/// The time and the position, where the sentence must have one; false when it makes no sense.
bool readFix(const Sentence &sentence, const Places &places, FixSentence &result) noexcept {
    if (!readTime(sentence, places.time, result)) {
        return false;
    }
    if (!result.isVoid) {
        const std::size_t first = places.latitude;
        result.position = readPosition(sentence.field(first), sentence.field(first + 1),
                                       sentence.field(first + 2), sentence.field(first + 3));
    }
    return result.isVoid || result.position;
}

std::optional<float> readSpeed(std::string_view field, double metresASecond) noexcept {
    const auto number = readNumber(field);
    if (!number || *number < 0.0 || *number * metresASecond > largestSpeed) {
        return std::nullopt;
    }
    return static_cast<float>(*number * metresASecond);
}

/// The status and the mode, the latter in a field that old receivers do not have. False when the
/// status is neither valid nor void.
bool readStatus(std::string_view status, std::string_view mode, FixSentence &result) noexcept {
    result.isVoid = status == "V" || mode == "N";
    return status == "A" || status == "V";
}

// $--RMC,time,status,lat,N/S,lon,E/W,knots,course,date,variation,E/W,mode
Result readRMC(const Sentence &sentence, FixSentence result) noexcept {
    if (!readStatus(sentence.field(2), sentence.field(12), result) ||
        !readFix(sentence, {.time = 1, .latitude = 3}, result)) {
        return std::nullopt;
    }
    if (!result.isVoid) {
        result.speed = readSpeed(sentence.field(7), metresASecondOfKnot);
        // Before the first fix, receivers send whatever date they were made with.
        result.day = readDate(sentence.field(9));
    }
    return result;
}

// $--GGA,time,lat,N/S,lon,E/W,quality,satellites,dilution,altitude,M,...
Result readGGA(const Sentence &sentence, FixSentence result) noexcept {
    const auto quality = readCount(sentence.field(6), 9);
    result.isVoid = quality == 0;
    if (!quality || !readFix(sentence, {.time = 1, .latitude = 2}, result)) {
        return std::nullopt;
    }
    const auto altitude = readNumber(sentence.field(9));
    const std::string_view unit = sentence.field(10);
    if (!result.isVoid && altitude && std::abs(*altitude) <= largestAltitude &&
        (unit == "M" || unit.empty())) {
        result.altitude = altitude;
    }
    return result;
}

// $--GLL,lat,N/S,lon,E/W,time,status,mode; the oldest receivers end behind the position
Result readGLL(const Sentence &sentence, FixSentence result) noexcept {
    constexpr std::size_t statusPlace = 6;
    const bool hasStatus = sentence.fieldCount() >= statusPlace;
    const std::string_view status = hasStatus ? sentence.field(statusPlace) : "A";
    if (!readStatus(status, sentence.field(7), result) ||
        !readFix(sentence, {.time = 5, .latitude = 1}, result)) {
        return std::nullopt;
    }
    return result;
}

// $--VTG,course,T,course,M,knots,N,kilometres an hour,K,mode
Result readVTG(const Sentence &sentence, FixSentence result) noexcept {
    if (sentence.field(9) == "N") {
        return result; // understood, and says nothing
    }
    if (sentence.field(8) == "K") {
        result.speed = readSpeed(sentence.field(7), metresASecondOfKilometreAnHour);
    }
    if (!result.speed && sentence.field(6) == "N") {
        result.speed = readSpeed(sentence.field(5), metresASecondOfKnot);
    }
    return result;
}

// $--GSA,automatic or not,kind of the fix,...
Result readGSA(const Sentence &sentence, FixSentence result) noexcept {
    result.fixKind = readCount(sentence.field(2), 3);
    return result.fixKind > 0 ? Result(result) : std::nullopt;
}

// $--ZDA,time,day,month,year,...
Result readZDA(const Sentence &sentence, FixSentence result) noexcept {
    if (!readTime(sentence, 1, result)) {
        return std::nullopt;
    }
    result.day = readDate(sentence.field(2), sentence.field(3), sentence.field(4));
    // A date is no use without a time: it may be yesterday's.
    const bool isEmpty = sentence.field(1).empty() && sentence.field(4).empty();
    return isEmpty || (result.time && result.day) ? Result(result) : std::nullopt;
}

} // namespace

std::optional<FixSentence> readFixSentence(const Sentence &sentence) noexcept {
    FixSentence result;
    result.type = sentence.type();
    result.talker = sentence.talker();
    switch (result.type) {
    case SentenceType::RMC:
        return readRMC(sentence, result);
    case SentenceType::GGA:
        return readGGA(sentence, result);
    case SentenceType::GLL:
        return readGLL(sentence, result);
    case SentenceType::VTG:
        return readVTG(sentence, result);
    case SentenceType::GSA:
        return readGSA(sentence, result);
    case SentenceType::ZDA:
        return readZDA(sentence, result);
    case SentenceType::WPL:
    case SentenceType::RTE:
    case SentenceType::Other:
        break;
    }
    return std::nullopt;
}

} // namespace pelluvia::nmea
