// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/model/GPSPoint.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// \file
/// The bodies of the sentences of a point. All are pure; positions must be on the globe.

namespace pelluvia::nmea {

/// Whether latitude and longitude are those of a place on the globe.
[[nodiscard]] bool isOnGlobe(const GPSPoint &point) noexcept;

/// Whether a time can be told by a date with two digits for the year: 1970 to 2069. 0 is no time.
[[nodiscard]] bool isTellable(std::int64_t time) noexcept;

/// Whether an altitude, in metres, or a speed, in metres a second, can be true. What cannot would
/// make a sentence too long, too.
[[nodiscard]] bool isAltitude(double metres) noexcept;
[[nodiscard]] bool isSpeed(float metresASecond) noexcept;

/// The position as it stands in all sentences: ddmm.mmm,N,dddmm.mmm,E.
[[nodiscard]] std::string positionFields(const GPSPoint &point);

/// A RMC, valid, with the speed in metres a second where one is known and can be. A time that is
/// not tellable leaves its fields empty.
[[nodiscard]] std::string rmcBody(const GPSPoint &point, std::optional<float> speed);

/// A GGA, of a fix by satellites. An altitude of 0.0, which says that there is none, or one that
/// cannot be, leaves its field empty.
[[nodiscard]] std::string ggaBody(const GPSPoint &point);

/// A WPL.
[[nodiscard]] std::string wplBody(std::string_view positionFields, std::string_view name);

} // namespace pelluvia::nmea
