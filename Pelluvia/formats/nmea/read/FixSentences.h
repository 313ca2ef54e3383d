// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/formats/nmea/read/Fields.h>
#include <Pelluvia/formats/nmea/read/Sentence.h>

#include <cstdint>
#include <optional>
#include <string_view>

namespace pelluvia::nmea {

/// What one of the sentences RMC, GGA, GLL, VTG, GSA and ZDA says. Nothing where the sentence does
/// not say it.
struct FixSentence {
    SentenceType type = SentenceType::Other;
    std::string_view talker = {}; ///< borrowed from the sentence
    /// The receiver says that it does not know where it is. There is no position then.
    bool isVoid = false;
    std::optional<milliseconds> time = {}; ///< of the day
    std::optional<std::int64_t> day = {};  ///< counted from 1970-01-01; the date of `time`
    std::optional<Position> position = {}; ///< always there in a RMC, GGA or GLL that is not void
    std::optional<double> altitude = {};   ///< metres above the sea
    std::optional<float> speed = {};       ///< metres a second
    std::optional<int> fixKind = {};       ///< 1 none, 2 in the plane, 3 in space

    /// Whether sentences of this type say where the receiver is.
    [[nodiscard]] bool isPositional() const noexcept {
        return type == SentenceType::RMC || type == SentenceType::GGA || type == SentenceType::GLL;
    }
};

/// Reads a sentence of one of these types. Nothing when it is of another type, or what it says
/// makes no sense: a status that there is none of, a position off the globe, a time that no clock
/// shows. An altitude or a speed that makes no sense is left out by itself, and so is a date.
[[nodiscard]] std::optional<FixSentence> readFixSentence(const Sentence &sentence) noexcept;

} // namespace pelluvia::nmea
