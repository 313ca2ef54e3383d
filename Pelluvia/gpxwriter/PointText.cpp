// SPDX-License-Identifier: MIT

#include <Pelluvia/gpxwriter/internal/PointText.h>

namespace pelluvia {

void appendElevation(TextCursor &text, double altitude) noexcept {
    if (altitude != 0.0) {
        text.literal("<ele>").fixed(altitude).literal("</ele>");
    }
}

void appendTime(TextCursor &text, TimestampText &timestamps, std::int64_t time) noexcept {
    TextCursor element = text;
    if (time != 0 && element.literal("<time>").timestamp(timestamps, time)) {
        text = element.literal("</time>");
    }
}

} // namespace pelluvia
