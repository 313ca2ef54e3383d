// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace pelluvia::nmea {

/// The sentences that the driver understands, whoever talks, and all others.
enum class SentenceType : std::uint8_t {
    RMC, ///< position, speed, date and time
    GGA, ///< position, quality of the fix, altitude
    GLL, ///< position
    VTG, ///< speed
    GSA, ///< kind of the fix
    ZDA, ///< date and time
    WPL, ///< a waypoint
    RTE, ///< a part of a route
    Other
};

/// What a line turned out to be.
enum class LineKind : std::uint8_t {
    Sentence,    ///< of any type
    BadChecksum, ///< a sentence that was damaged on its way
    Foreign,     ///< a line of a sister protocol, as AIS has it: with "!" in the place of "$"
    Garbage,     ///< anything else: comments, noise
    Blank        ///< white space
};

/// A sentence taken apart: talker, type, and fields. A sentence without a checksum is taken as it
/// is; one whose checksum has lost a digit counts as damaged.
///
///     Sentence sentence;
///     if (sentence.read("$GPGLL,4916.45,N,12311.12,W,225444,A*31") == LineKind::Sentence) {
///         … sentence.type() == SentenceType::GLL, sentence.field(1) == "4916.45" …
///     }
///
/// Read again into the same object to allocate nothing. Threads: one at a time.
class Sentence {
  public:
    Sentence() = default;
    Sentence(const Sentence &) = delete; // fields refer to the body
    Sentence &operator=(const Sentence &) = delete;

    /// Reads a line. What the other functions give holds until the next reading, and only when this
    /// was a sentence.
    [[nodiscard]] LineKind read(std::string_view line);

    [[nodiscard]] SentenceType type() const noexcept { return type_; }
    /// Two letters that say what kind of device talks: "GP", "GN". Empty when the type is `Other`.
    [[nodiscard]] std::string_view talker() const noexcept;
    /// A field, 1 for the first behind the type; empty where the sentence has none. None are known
    /// of the type `Other`.
    [[nodiscard]] std::string_view field(std::size_t number) const noexcept {
        return number < fields_.size() ? fields_[number] : std::string_view();
    }
    /// Whether it had a checksum, which was right then. Not known of the type `Other`.
    [[nodiscard]] bool hasChecksum() const noexcept { return hasChecksum_; }
    /// How many fields there are behind the type.
    [[nodiscard]] std::size_t fieldCount() const noexcept { return fields_.size() - 1; }

  private:
    void split();

    std::string body_;
    SentenceType type_ = SentenceType::Other;
    bool hasChecksum_ = false;
    std::vector<std::string_view> fields_ = {std::string_view()}; ///< the first is the address
};

} // namespace pelluvia::nmea
