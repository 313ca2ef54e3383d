// SPDX-License-Identifier: MIT

#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace pelluvia::xml {

/// A checksum of bytes that come in pieces: the same for the same bytes, however they were cut, and
/// for others almost certainly another. Made to cost next to nothing beside reading them, not to
/// withstand somebody who looks for two contents with the same. To be compared within one process.
class ContentDigest {
  public:
    void add(std::string_view bytes) noexcept;

    /// How many bytes were added.
    [[nodiscard]] std::uint64_t size() const noexcept { return size_; }

    [[nodiscard]] bool operator==(const ContentDigest &) const = default;

  private:
    /// Words that do not wait for each other.
    static constexpr std::size_t laneCount = 8;
    using Lanes = std::array<std::uint64_t, laneCount>;
    static constexpr std::size_t stripeSize = sizeof(Lanes);

    void addStripes(const char *bytes, std::size_t count) noexcept;

    Lanes sums_{};                        ///< of the words
    Lanes weighted_{};                    ///< of the sums: so that it matters where a word stands
    std::array<char, stripeSize> rest_{}; ///< of bytes that are no whole stripe yet, then zeros
    std::uint64_t size_ = 0;
};

} // namespace pelluvia::xml
