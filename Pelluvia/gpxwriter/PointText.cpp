#include <Pelluvia/gpxwriter/internal/PointText.h>

#include <limits>

namespace pelluvia {

std::optional<CivilTime> brokenDownTime(std::int64_t time) noexcept {
    using Year = std::numeric_limits<std::int32_t>;
    constexpr std::int64_t firstYear = 1900;
    const CivilTime broken = civilFromSeconds(time);
    const std::int64_t year = broken.date.year - firstYear;
    return year >= Year::min() && year <= Year::max() ? std::optional(broken) : std::nullopt;
}

void appendElevation(TextCursor &text, double altitude) noexcept {
    if (altitude != 0.0) {
        text.literal("<ele>").fixed(altitude).literal("</ele>");
    }
}

void appendTimestamp(TextCursor &text, const CivilTime &time) noexcept {
    text.twoDigits(time.date.year).literal("-");
    text.twoDigits(time.date.month).literal("-");
    text.twoDigits(time.date.day).literal("T");
    text.twoDigits(time.hour).literal(":");
    text.twoDigits(time.minute).literal(":");
    text.twoDigits(time.second).literal("Z");
}

void appendTime(TextCursor &text, std::int64_t time) noexcept {
    if (time == 0) {
        return;
    }
    if (const std::optional<CivilTime> broken = brokenDownTime(time)) {
        text.literal("<time>");
        appendTimestamp(text, *broken);
        text.literal("</time>");
    }
}

} // namespace pelluvia
