// SPDX-License-Identifier: MIT

#include <tools/pelluvia/terminal/ProgressBar.h>

#include <Pelluvia/model/TransferKind.h>

#include <cstddef>
#include <optional>

namespace pelluvia::host {

namespace {

constexpr std::size_t barWidth = 30;

std::string_view titleOf(int kind) {
    switch (kind) {
    case transferKind::tracks:
        return "tracks   ";
    case transferKind::routes:
        return "routes   ";
    case transferKind::waypoints:
        return "waypoints";
    default:
        return "transfer ";
    }
}

/// `share` is from 0 to 1.
std::string barText(double share) {
    constexpr std::size_t percentWidth = 3;
    const auto filled = static_cast<std::size_t>(share * static_cast<double>(barWidth));
    const std::string percent = std::to_string(static_cast<int>(share * 100.0));
    std::string text = "[";
    text.append(filled, '#').append(barWidth - filled, ' ').append("] ");
    return text.append(percentWidth - percent.size(), ' ').append(percent).append(" %");
}

/// Nothing where the whole is not known.
template <class Number>
std::optional<double> shareOf(Number part, Number whole) {
    const bool isKnown = whole > 0 && part <= whole;
    return isKnown ? std::optional(static_cast<double>(part) / static_cast<double>(whole))
                   : std::nullopt;
}

} // namespace

void ProgressBar::gpxStartTransfer(int /*kind*/, int count) {
    count_ = count;
}

void ProgressBar::gpxProgress(int kind, int index) {
    if (isMuted_ || index % stride != 0) {
        return;
    }
    const auto now = clock_();
    if (!isShown_ || now - lastDrawn_ >= interval) {
        lastDrawn_ = now;
        draw(kind, index);
    }
}

void ProgressBar::gpxEndTransfer(int /*kind*/) {
    clear();
}

void ProgressBar::draw(int kind, int index) {
    constexpr std::string_view toLineStart = "\r";
    constexpr std::string_view eraseRest = "\x1B[K";
    write_(std::string(toLineStart)
               .append(titleOf(kind))
               .append(" ")
               .append(extent(kind, index))
               .append(eraseRest));
    isShown_ = true;
}

std::string ProgressBar::extent(int kind, int index) const {
    const ReadingProgress reading = reading_ ? reading_() : ReadingProgress();
    auto share = shareOf(reading.position, reading.size.value_or(0));
    // The count of tracks is that of their segments.
    if (!share && kind != transferKind::tracks) {
        share = shareOf(index, count_);
    }
    return share ? barText(*share) : std::to_string(index) + " points";
}

void ProgressBar::setMuted(bool isMuted) {
    isMuted_ = isMuted;
    if (isMuted) {
        clear();
    }
}

void ProgressBar::clear() {
    if (isShown_) {
        write_("\r\x1B[K");
        isShown_ = false;
    }
}

} // namespace pelluvia::host
