#pragma once

#include <Pelluvia/companion/Companion.h>
#include <Pelluvia/model/GPSPoint.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace pelluvia {

/// The point that is being assembled from texts. Every pass of an import sees the points of all
/// kinds and sends those of one, so the texts become numbers only when the point is read.
///
/// Texts that are not numbers or times read as 0. The point's `test` stays 0.
class CollectedPoint {
  public:
    /// Latitude, longitude, altitude and time 0.
    void clear() noexcept {
        point_.latitude = point_.longitude = point_.altitude = 0.0;
        point_.time = 0;
        latitude_.clear();
        longitude_.clear();
        altitude_.clear();
        time_.clear();
    }

    /// Degrees, decimal.
    void setPosition(std::string_view latitude, std::string_view longitude) noexcept;
    /// Metres, decimal.
    void setAltitude(std::string_view text) noexcept;
    /// A date and time of day, ISO 8601.
    void setTime(std::string_view text) noexcept;

    /// The point of what was set since it was cleared, the last of each.
    [[nodiscard]] const GPSPoint &read() noexcept;

  private:
    /// A text that waits to be read.
    class Waiting {
      public:
        void clear() noexcept { size_ = 0; }
        /// Keeps a copy of the text; false when it has more bytes than any sensible number or time
        /// (or none), and must be read at once.
        [[nodiscard]] bool keep(std::string_view text) noexcept;
        /// Empty when nothing waits.
        [[nodiscard]] std::string_view text() const noexcept { return {bytes_.data(), size_}; }

      private:
        std::array<char, 39> bytes_;
        std::uint8_t size_ = 0;
    };

    GPSPoint point_;
    Waiting latitude_;
    Waiting longitude_;
    Waiting altitude_;
    Waiting time_;
    ISO8601Day day_; // of the last time that was read
};

} // namespace pelluvia
