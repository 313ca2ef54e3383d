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

/// One line of a call log as a set of named values, not yet fitted to a call. Made once and parsed
/// into again for each line.
///
/// Threads: one at a time.
class CallLine {
  public:
    /// Reads a line, which must be one JSON object within the limits of CallLogLimits.h. What is
    /// wrong with it, or nothing.
    ///
    /// A number with a point or an exponent becomes a 64-bit float, any other an integer. Inside
    /// `extra` and `extras`, an object of exactly the five fields of a point, in their order and
    /// with their types, becomes a wrapped `GPSPoint`, and {"real":"NaN"} and its like a number.
    [[nodiscard]] std::optional<CallLineFault> parse(std::string_view line);

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
