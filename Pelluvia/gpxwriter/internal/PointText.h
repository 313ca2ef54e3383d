// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/gpxwriter/internal/TextCursor.h>

#include <cstddef>
#include <cstdint>

/// \file
/// The parts that points have in common. Each function appends at most as many bytes as the
/// constant before it says.

namespace pelluvia {

inline constexpr std::size_t largestPosition = 2 * maxGeneralText + 32;
/// `<element lat="..." lon="..."`: the element's start, with its quote, is given, the tag stays
/// open.
template <std::size_t size>
void appendPosition(TextCursor &text, const char (&startOfTag)[size], double latitude,
                    double longitude) noexcept {
    text.literal(startOfTag).literal(" lat=\"").general(latitude);
    text.literal("\" lon=\"").general(longitude).literal("\"");
}

inline constexpr std::size_t largestElevation = maxFixedText + 16;
/// The elevation element; nothing when the altitude is 0.0.
void appendElevation(TextCursor &text, double altitude) noexcept;

inline constexpr std::size_t largestTime = TimestampText::maxSize + 16;
/// The time element; nothing when the time is 0 or cannot be broken down.
void appendTime(TextCursor &text, TimestampText &timestamps, std::int64_t time) noexcept;

} // namespace pelluvia
