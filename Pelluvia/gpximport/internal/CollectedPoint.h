// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/gpximport/internal/CollectedNumber.h>
#include <Pelluvia/gpximport/internal/ShortText.h>
#include <Pelluvia/model/GPSPoint.h>
#include <Pelluvia/text/Companion.h>

#include <cstdint>
#include <string_view>

namespace pelluvia {

/// The point that is being assembled from texts. They become numbers only when the point is read
/// (see `CollectedNumber`).
///
/// Texts that are not numbers or times read as 0. The point's `test` stays 0.
class CollectedPoint {
  public:
    /// Latitude, longitude, altitude and time 0.
    void clear() noexcept {
        latitude_.clear();
        longitude_.clear();
        altitude_.clear();
        time_ = 0;
        timeText_.clear();
    }

    /// Degrees, decimal.
    void setPosition(std::string_view latitude, std::string_view longitude) noexcept {
        latitude_.set(latitude);
        longitude_.set(longitude);
    }
    /// Metres, decimal.
    void setAltitude(std::string_view text) noexcept { altitude_.set(text); }
    /// A date and time of day, ISO 8601.
    void setTime(std::string_view text) noexcept {
        if (!timeText_.keep(text)) {
            readTime(text);
        }
    }

    /// The point of what was set since it was cleared, the last of each.
    [[nodiscard]] GPSPoint read() noexcept;

  private:
    void readTime(std::string_view text) noexcept;

    CollectedNumber<double> latitude_;
    CollectedNumber<double> longitude_;
    CollectedNumber<double> altitude_;
    std::int64_t time_ = 0;
    ShortText timeText_;
    ISO8601Day day_; // of the last time that was read
};

} // namespace pelluvia
