#include <tools/pelluvia/terminal/ProgressBar.h>

#include <Pelluvia/model/TransferKind.h>

#include <cstdint>

namespace pelluvia::host {

namespace {

constexpr int barWidth = 30;

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

std::string barText(int index, int count) {
    const auto share = [index, count](std::int64_t whole) {
        return static_cast<std::size_t>(index * whole / count);
    };
    constexpr std::size_t percentWidth = 3;
    const std::size_t filled = share(barWidth);
    const std::string percent = std::to_string(share(100));
    std::string text = "[";
    text.append(filled, '#').append(barWidth - filled, ' ').append("] ");
    return text.append(percentWidth - percent.size(), ' ').append(percent).append(" %");
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
    // The count of tracks is that of their segments.
    const bool isKnown = kind != transferKind::tracks && count_ >= index;
    write_(std::string(toLineStart)
               .append(titleOf(kind))
               .append(" ")
               .append(isKnown ? barText(index, count_) : std::to_string(index) + " points")
               .append(eraseRest));
    isShown_ = true;
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
