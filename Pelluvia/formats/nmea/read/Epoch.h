// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/formats/nmea/read/Fields.h>
#include <Pelluvia/formats/nmea/read/FixSentences.h>

#include <array>
#include <cstddef>
#include <optional>

namespace pelluvia::nmea {

/// What a receiver says in one round of sentences about one moment: the material of one point.
///
/// Sentences of the same time of day belong together. A receiver that repeats a type of sentence
/// has begun a new round, even without another time: it may not know the time, or tell whole
/// seconds only and measure more often. Sentences that never have a time (VTG, GSA) belong to the
/// round that is under way when they come.
///
/// Threads: a plain value.
class Epoch {
  public:
    /// Whether the sentence is about this moment. Otherwise a new epoch begins with it.
    [[nodiscard]] bool accepts(const FixSentence &sentence) const noexcept;

    /// Takes what the sentence says. Where two say the same, the first counts; only the speed of a
    /// RMC goes before that of a VTG, which may stem from the round before.
    void add(const FixSentence &sentence) noexcept;

    /// The receiver said that it does not know where it is: in any sentence, or in all GSA, of
    /// which a receiver sends one for each system of satellites.
    [[nodiscard]] bool isVoid() const noexcept { return isVoid_ || fixKind_ == 1; }

    [[nodiscard]] const std::optional<milliseconds> &time() const noexcept { return time_; }
    [[nodiscard]] const std::optional<Position> &position() const noexcept { return position_; }
    [[nodiscard]] const std::optional<double> &altitude() const noexcept { return altitude_; }
    [[nodiscard]] std::optional<float> speed() const noexcept {
        return speed_ ? speed_ : speedOfVTG_;
    }
    /// The best kind of fix that a GSA told; see `FixSentence::fixKind`.
    [[nodiscard]] std::optional<int> fixKind() const noexcept { return fixKind_; }

    /// The moment of `time` (see `UTCClock`), as soon as it is known. Kept here, found elsewhere.
    std::optional<milliseconds> instant;

  private:
    /// Who sent the first sentence of a type: its talker's two letters, or nothing.
    using Talker = std::array<char, 2>;
    static constexpr std::size_t positionalTypes = 3;

    [[nodiscard]] static std::size_t slotOf(const FixSentence &sentence) noexcept;

    std::array<Talker, positionalTypes> talkers_{};
    bool isPositional_ = false; ///< a sentence with a position, or a void one, is part of it
    bool isVoid_ = false;
    std::optional<milliseconds> time_;
    std::optional<Position> position_;
    std::optional<double> altitude_;
    std::optional<float> speed_;
    std::optional<float> speedOfVTG_;
    std::optional<int> fixKind_;
};

} // namespace pelluvia::nmea
