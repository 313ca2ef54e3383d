// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/xml/XMLLimits.h>

#include <cstddef>
#include <cstdint>

namespace pelluvia::xml {

/// Counts what the entities of a document add to it. Every reference costs as much as the text that
/// it stands for, nested ones included, and a little for itself, whether or not that text leads to
/// events: so the limit bounds the work as well as the result.
class EntityBudget {
  public:
    /// A reference adds `size` bytes to a document of which `read` bytes were read. False when that
    /// is too much.
    [[nodiscard]] bool spend(std::size_t size, std::uint64_t read) noexcept {
        constexpr std::size_t reference = 8;
        spent_ += size + reference;
        return spent_ <= xmlLimits::amplificationAllowance + xmlLimits::amplificationFactor * read;
    }
    /// The same within an attribute value, which is put together in memory.
    [[nodiscard]] bool spendInValue(std::size_t size) noexcept {
        inValue_ += size;
        return inValue_ <= xmlLimits::textSize;
    }
    /// An element has started: its attribute values are complete.
    void endValues() noexcept { inValue_ = 0; }

    /// `size` bytes of declarations, from wherever. False when there are too many.
    [[nodiscard]] bool declare(std::size_t size) noexcept {
        declared_ += size;
        return declared_ <= xmlLimits::declarationsSize;
    }

  private:
    std::uint64_t spent_ = 0;
    std::uint64_t inValue_ = 0;
    std::uint64_t declared_ = 0;
};

} // namespace pelluvia::xml
