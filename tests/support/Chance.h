// SPDX-License-Identifier: MIT

#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace pelluvia::testing {

/// Numbers by chance, the same in every run and on every machine (SplitMix64): what all tests use
/// that need many cases. The distributions and algorithms of the standard library take it, too.
class Chance {
  public:
    explicit Chance(std::uint64_t seed) : state_(seed) {}

    /// Any number of 64 bits.
    using result_type = std::uint64_t;
    [[nodiscard]] static constexpr result_type min() { return 0; }
    [[nodiscard]] static constexpr result_type max() { return ~result_type{0}; }
    [[nodiscard]] result_type operator()() {
        std::uint64_t z = (state_ += 0x9E3779B97F4A7C15U);
        z = (z ^ (z >> 30U)) * 0xBF58476D1CE4E5B9U;
        z = (z ^ (z >> 27U)) * 0x94D049BB133111EBU;
        return z ^ (z >> 31U);
    }

    /// A number below the limit, which is not 0.
    [[nodiscard]] std::size_t below(std::size_t limit) {
        return static_cast<std::size_t>((*this)() % limit);
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
