// SPDX-License-Identifier: MIT

#include <Pelluvia/formats/nmea/live/LiveView.h>

#include <Pelluvia/text/NumberText.h>

#include <array>
#include <utility>

namespace pelluvia::nmea {

namespace {

// To the first column, and what follows there on the line away.
constexpr std::string_view newLine = "\r\x1B[K";

std::string fixed(double value, int decimals) {
    std::array<char, maxFixedText> text; // NOLINT(*-member-init): written before it is read
    return {text.data(), writePaddedFixed(text.data(), value, decimals, 0)};
}

std::string_view fixText(const Epoch &epoch) noexcept {
    if (epoch.isVoid()) {
        return "no fix";
    }
    if (epoch.fixKind() == 2) {
        return "2D fix";
    }
    if (epoch.fixKind() == 3) {
        return "3D fix";
    }
    return epoch.position() ? "fix" : "waiting";
}

} // namespace

LiveView::LiveView(Write write, std::function<Clock::time_point()> now)
    : write_(std::move(write)), now_(std::move(now)) {}

double LiveView::rate(Clock::time_point now, std::int64_t points) {
    counts_.push_back({now, points});
    while (counts_.size() > 2 && now - counts_[1].time >= rateSpan) {
        counts_.pop_front();
    }
    const Count &first = counts_.front();
    const double seconds = std::chrono::duration<double>(now - first.time).count();
    return seconds > 0.0 ? static_cast<double>(points - first.points) / seconds : 0.0;
}

void LiveView::show(const NMEATally &tally, const Epoch &epoch) {
    const Clock::time_point now = now_();
    if (!counts_.empty() && now - counts_.back().time < shortestInterval) {
        return;
    }
    std::string line(newLine);
    line.append(std::to_string(tally.points))
        .append(tally.points == 1 ? " point, " : " points, ")
        .append(fixText(epoch));
    if (const auto &position = epoch.position(); position && !epoch.isVoid()) {
        line.append(", ").append(fixed(position->latitude, 5));
        line.append(" ").append(fixed(position->longitude, 5));
    }
    line.append(", ").append(fixed(rate(now, tally.points), 1)).append(" points/s");
    isShown_ = true;
    write_(line);
}

void LiveView::clear() {
    if (std::exchange(isShown_, false)) {
        write_(newLine);
    }
}

} // namespace pelluvia::nmea
