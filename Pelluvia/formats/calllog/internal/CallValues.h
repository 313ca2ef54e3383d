// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/model/GPSPoint.h>
#include <Pelluvia/values/Dictionary.h>
#include <Pelluvia/values/Error.h>
#include <Pelluvia/values/Ref.h>
#include <Pelluvia/values/Value.h>

#include <optional>
#include <string>
#include <string_view>

/// \file
/// From the objects of a call log to what they stand for.

namespace pelluvia {

/// What an object inside a dictionary or an array stands for: a wrapped point, a number that is not
/// finite, or itself. A point must be spelled exactly as the writer spells it, so that no other
/// dictionary is taken for one.
[[nodiscard]] Value valueOfObject(const Ref<Dictionary> &object);

/// The point that an argument stands for, or nothing. Here the fields may have any order, and the
/// coordinates may be integers.
[[nodiscard]] std::optional<GPSPoint> pointArgument(const Dictionary &object);

/// The error that an object with "domain", "code" and "userInfo" stands for, or null.
[[nodiscard]] ErrorPtr errorArgument(const Dictionary &object);

/// The beginning of a text, for a message.
[[nodiscard]] std::string excerpt(std::string_view text);
/// The same in quotes.
[[nodiscard]] std::string inQuotes(std::string_view text);

} // namespace pelluvia
