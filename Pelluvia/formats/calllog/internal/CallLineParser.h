// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/formats/calllog/internal/CallLine.h>

#include <optional>
#include <string_view>

namespace pelluvia {

/// Reads a line of a log, which must be one JSON object within the limits of CallLogLimits.h, into
/// `line`, in the place of what it held. What is wrong with it, or nothing.
///
/// A number with a point or an exponent becomes a 64-bit float, any other an integer. Inside
/// `extra` and `extras`, an object of exactly the five fields of a point, in their order and with
/// their types, becomes a wrapped `GPSPoint`, and {"real":"NaN"} and its like a number.
[[nodiscard]] std::optional<CallLineFault> parseCallLine(std::string_view text, CallLine &line);

} // namespace pelluvia
