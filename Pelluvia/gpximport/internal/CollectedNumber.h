// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/gpximport/internal/ShortText.h>
#include <Pelluvia/text/Scanner.h>

#include <cstdint>
#include <string_view>
#include <type_traits>

namespace pelluvia {

/// A number that is collected as text and read when it is asked for: every pass of an import sees
/// the values of all points and sends those of one kind.
///
/// A text that does not begin with a number reads as 0.
template <class Number>
class CollectedNumber {
  public:
    /// 0.
    void clear() noexcept {
        value_ = 0;
        text_.clear();
    }

    void set(std::string_view text) noexcept {
        if (!text_.keep(text)) {
            value_ = read(text);
        }
    }

    /// The number of the text that was set last.
    [[nodiscard]] Number value() noexcept {
        if (!text_.text().empty()) {
            value_ = read(text_.text());
            text_.clear();
        }
        return value_;
    }

  private:
    static Number read(std::string_view text) noexcept {
        Scanner scanner(text);
        if constexpr (std::is_same_v<Number, double>) {
            return scanner.scanDouble().value_or(0);
        } else if constexpr (std::is_same_v<Number, float>) {
            return scanner.scanFloat().value_or(0);
        } else {
            static_assert(std::is_same_v<Number, std::int32_t>);
            return scanner.scanInt().value_or(0);
        }
    }

    Number value_ = 0;
    ShortText text_;
};

} // namespace pelluvia
