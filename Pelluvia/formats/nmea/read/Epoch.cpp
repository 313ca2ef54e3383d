// SPDX-License-Identifier: MIT

#include <Pelluvia/formats/nmea/read/Epoch.h>

#include <algorithm>

namespace pelluvia::nmea {

namespace {

template <class T>
void setIfEmpty(std::optional<T> &value, const std::optional<T> &candidate) noexcept {
    if (!value) {
        value = candidate;
    }
}

} // namespace

std::size_t Epoch::slotOf(const FixSentence &sentence) noexcept {
    return sentence.type == SentenceType::RMC ? 0 : sentence.type == SentenceType::GGA ? 1 : 2;
}

bool Epoch::accepts(const FixSentence &sentence) const noexcept {
    if (!sentence.isPositional() || !isPositional_) {
        return true;
    }
    const Talker &first = talkers_[slotOf(sentence)];
    const bool isRepeated =
        std::equal(first.begin(), first.end(), sentence.talker.begin(), sentence.talker.end());
    return !isRepeated && (!sentence.time || sentence.time == time_);
}

void Epoch::add(const FixSentence &sentence) noexcept {
    if (!sentence.isPositional()) {
        setIfEmpty(speedOfVTG_, sentence.speed);
        fixKind_ = std::max(fixKind_, sentence.fixKind);
        return;
    }
    Talker &first = talkers_[slotOf(sentence)];
    if (first == Talker{} && sentence.talker.size() == first.size()) {
        std::copy(sentence.talker.begin(), sentence.talker.end(), first.begin());
    }
    isPositional_ = true;
    setIfEmpty(time_, sentence.time);
    setIfEmpty(position_, sentence.position);
    setIfEmpty(altitude_, sentence.altitude);
    setIfEmpty(speed_, sentence.speed);
    // A second receiver that knows nothing, not even the time, does not contradict the first.
    isVoid_ = isVoid_ || (sentence.isVoid && (sentence.time || !position_));
}

} // namespace pelluvia::nmea
