// SPDX-License-Identifier: MIT

#include <Pelluvia/formats/nmea/read/Decoder.h>

#include <Pelluvia/formats/nmea/read/FixSentences.h>

#include <algorithm>
#include <chrono>

namespace pelluvia::nmea {

namespace {

/// Longer gaps than all of history cannot be told apart, but can overflow.
milliseconds gapOf(std::int64_t seconds) noexcept {
    constexpr std::int64_t longest = 1'000'000'000'000;
    return std::chrono::seconds(std::clamp<std::int64_t>(seconds, 0, longest));
}

} // namespace

Decoder::Decoder(GPSOutputReceiver &receiver, const DecoderOptions &options)
    : receiver_(receiver),
      sender_(receiver, tally_, gapOf(options.longestGap), options.day.has_value()),
      track_(sender_, options.day),
      waypoints_(tally_),
      routes_(tally_) {}

void Decoder::addLine(std::string_view line, LineEnd end) {
    switch (sentence_.read(line)) {
    case LineKind::Sentence:
        ++(isDamaged(end) ? tally_.badChecksum : use() ? tally_.used : tally_.notUsed);
        break;
    case LineKind::Foreign:
        ++tally_.notUsed;
        break;
    case LineKind::BadChecksum:
        ++tally_.badChecksum;
        break;
    case LineKind::Garbage:
        ++tally_.garbage;
        break;
    case LineKind::Blank:
        break;
    }
}

bool Decoder::isDamaged(LineEnd end) noexcept {
    if (sentence_.type() == SentenceType::Other) {
        return false;
    }
    hasChecksums_ = hasChecksums_ || sentence_.hasChecksum();
    return end == LineEnd::Missing && hasChecksums_ && !sentence_.hasChecksum();
}

/// Whether the sentence says something.
bool Decoder::use() {
    switch (sentence_.type()) {
    case SentenceType::Other:
        return false;
    case SentenceType::WPL:
        return waypoints_.add(sentence_);
    case SentenceType::RTE:
        return routes_.add(sentence_);
    case SentenceType::RMC:
    case SentenceType::GGA:
    case SentenceType::GLL:
    case SentenceType::VTG:
    case SentenceType::GSA:
    case SentenceType::ZDA:
        break;
    }
    const auto fix = readFixSentence(sentence_);
    if (fix) {
        track_.add(*fix);
    }
    return fix.has_value();
}

void Decoder::finish() {
    track_.finish();
    sender_.finish();
    waypoints_.send(receiver_);
    routes_.finish();
    routes_.send(receiver_, waypoints_);
}

} // namespace pelluvia::nmea
