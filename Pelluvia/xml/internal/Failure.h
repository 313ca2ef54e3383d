// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/values/Error.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace pelluvia::xml {

/// Why a document could not be read: the number of the XML library and a text.
struct Failure {
    int code = 0;
    std::string message;
};

/// A place in the document, both counted from 1; 0 when there is none.
struct Position {
    std::int64_t line = 0;
    std::int64_t column = 0;
};

/// The failure of a parse that the delegate has aborted.
[[nodiscard]] Failure abortFailure();

/// The error object that a parser reports.
[[nodiscard]] ErrorPtr makeError(const Failure &failure, Position position);

/// The text on one line, fit for a log or a terminal: control characters become spaces, white space
/// around it goes, and so do bytes that are not UTF-8 (messages quote the document, which need not
/// be UTF-8, and are cut without regard to characters).
[[nodiscard]] std::string oneLine(std::string_view text);

/// The system's text for an `errno` value, the same in every locale.
[[nodiscard]] std::string systemReason(int errorNumber);

} // namespace pelluvia::xml
