// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/values/Value.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace pelluvia {

/// The fields of the lines of a call log.
enum class CallField : std::uint8_t {
    Call,
    Kind,
    Extra,
    Point,
    Start,
    End,
    Extras,
    Accuracy,
    Object,
    Error,
    State,
    Count
};
inline constexpr auto callFieldNames =
    std::to_array<std::string_view>({"call", "kind", "extra", "point", "start", "end", "extras",
                                     "accuracy", "object", "error", "state", "count"});

[[nodiscard]] constexpr std::string_view nameOf(CallField field) {
    return callFieldNames[static_cast<std::size_t>(field)];
}

/// What is wrong with a line.
struct CallLineFault {
    std::string message;
    std::int64_t column = 0; ///< in bytes, from 1; 0 when it is not known
};

/// One line of a call log as a set of named values, not yet fitted to a call. Made once and filled
/// again for each line (see CallLineParser.h).
///
/// Threads: one at a time.
class CallLine {
  public:
    /// Takes all fields out.
    void clear() { fields_.fill(std::nullopt); }

    /// The value of a field: nothing when the line does not have it, a nil value for null.
    [[nodiscard]] const std::optional<Value> &operator[](CallField field) const noexcept {
        return fields_[static_cast<std::size_t>(field)];
    }
    /// Sets a field that must not be there yet; false when it is.
    [[nodiscard]] bool add(CallField field, Value value);

  private:
    std::array<std::optional<Value>, callFieldNames.size()> fields_;
};

} // namespace pelluvia
