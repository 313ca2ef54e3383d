#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace pelluvia {

/// A text that may be absent (nil), for fields that are filled and emptied for every point of a
/// file: unlike an optional string it keeps its memory while it is absent. A present text may be
/// empty.
struct CollectedText {
    std::string text;
    bool isPresent = false;

    /// Makes it a copy of `value`.
    void set(std::string_view value) {
        text.assign(value);
        isPresent = true;
    }

    /// Makes it a copy of `value`, or absent when that is empty.
    void setUnlessEmpty(std::string_view value) {
        if (value.empty()) {
            clear();
        } else {
            set(value);
        }
    }

    /// Makes it absent. The memory of an unusually long text is given back, so that one such text
    /// does not weigh on the rest of the file.
    void clear() noexcept {
        isPresent = false;
        if (text.capacity() > largestKept) {
            std::string().swap(text);
        }
    }

    static constexpr std::size_t largestKept = 64 * 1024;
};

} // namespace pelluvia
