// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/values/Value.h>

#include <cstddef>
#include <string_view>

namespace pelluvia {

/// A text that may be absent (nil), for fields that are filled and emptied for every point of a
/// file: it keeps its memory while it is absent, and also when it is sent, unless a receiver keeps
/// the value. A present text may be empty.
class CollectedText {
  public:
    [[nodiscard]] bool isPresent() const noexcept { return isPresent_; }
    /// The text, which must be present, as a value for a dictionary.
    [[nodiscard]] const Value &value() const noexcept { return value_; }
    /// The text; empty when it is absent.
    [[nodiscard]] std::string_view view() const noexcept {
        return isPresent_ ? *value_.string() : std::string_view();
    }

    /// Makes it a copy of `text`.
    void set(std::string_view text) {
        clear();
        value_.assign(text);
        isPresent_ = true;
    }

    /// Makes it a copy of `text`, or absent when that is empty.
    void setUnlessEmpty(std::string_view text) {
        if (text.empty()) {
            clear();
        } else {
            set(text);
        }
    }

    /// Makes it absent. The memory of an unusually long text is given back, so that one such text
    /// does not weigh on the rest of the file.
    void clear() noexcept {
        if (isPresent_) {
            isPresent_ = false;
            if (value_.string()->size() > largestKept) {
                value_ = Value();
            }
        }
    }

    static constexpr std::size_t largestKept = 64 * 1024;

  private:
    Value value_; // a string or, before the first text, nil
    bool isPresent_ = false;
};

} // namespace pelluvia
