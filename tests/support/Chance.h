#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace pelluvia::testing {

/// Numbers by chance, the same on every machine (SplitMix64).
class Chance {
  public:
    explicit Chance(std::uint64_t seed) : state_(seed) {}

    /// A number below the limit, which is not 0.
    [[nodiscard]] std::size_t below(std::size_t limit) {
        std::uint64_t z = (state_ += 0x9E3779B97F4A7C15U);
        z = (z ^ (z >> 30U)) * 0xBF58476D1CE4E5B9U;
        z = (z ^ (z >> 27U)) * 0x94D049BB133111EBU;
        return static_cast<std::size_t>((z ^ (z >> 31U)) % limit);
    }

    /// True once in so many times.
    [[nodiscard]] bool oneIn(std::size_t times) { return below(times) == 0; }

    /// One of them.
    template <class Element, std::size_t size>
    [[nodiscard]] const Element &oneOf(const std::array<Element, size> &elements) {
        return elements[below(size)];
    }

  private:
    std::uint64_t state_;
};

} // namespace pelluvia::testing
