// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/values/Error.h>

#include <string>
#include <variant>

namespace pelluvia {

/// What a producer passes to a receiver's `warning` and `error`, and a receiver to its error
/// target: nothing (nil), a message, or an error object (never null inside). An `error` carries an
/// error object or nothing.
using Report = std::variant<std::monostate, std::string, ErrorPtr>;

} // namespace pelluvia
