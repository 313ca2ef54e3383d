// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/values/Export.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

/// \file
/// Error objects: what a failed operation returns and what a receiver's `error` is given.

namespace pelluvia {

class Error;

/// An error object, shared and immutable; null means success.
using ErrorPtr = std::shared_ptr<const Error>;

/// What user information holds: a text, an integer, or another error.
using ErrorValue = std::variant<std::string, std::int64_t, ErrorPtr>;

/// User information: pairs of key and value, in order.
using ErrorInfo = std::vector<std::pair<std::string, ErrorValue>>;

/// What went wrong, for a reader of the user's language (text).
inline constexpr std::string_view NSLocalizedDescriptionKey = "NSLocalizedDescription";
/// What the user can do about it (text).
inline constexpr std::string_view NSLocalizedRecoverySuggestionErrorKey =
    "NSLocalizedRecoverySuggestion";
/// The path of the file concerned (text).
inline constexpr std::string_view NSFilePathErrorKey = "NSFilePath";
/// The error that caused this one (error).
inline constexpr std::string_view NSUnderlyingErrorKey = "NSUnderlyingError";

/// An error: a domain, a code that has its meaning within the domain, and user information.
///
/// Threads: immutable; share it freely.
class PELLUVIA_EXPORT Error {
  public:
    Error(std::string_view domain, std::int64_t code, ErrorInfo userInfo = {});
    /// Copies share what they hold; so does an error that was moved from.
    Error(const Error &) = default;
    Error &operator=(const Error &) = default;
    ~Error();

    /// A new shared error.
    [[nodiscard]] static ErrorPtr make(std::string_view domain, std::int64_t code,
                                       ErrorInfo userInfo = {});

    /// What it was made of. Borrowed while the error, or a copy of it, lives.
    [[nodiscard]] const std::string &domain() const noexcept;
    [[nodiscard]] std::int64_t code() const noexcept;
    [[nodiscard]] const ErrorInfo &userInfo() const noexcept;

    /// The value under a key of the user information, or null when there is none.
    [[nodiscard]] const ErrorValue *find(std::string_view key) const noexcept;
    /// The integer under a key, or 0.
    [[nodiscard]] std::int64_t integer(std::string_view key) const noexcept;
    /// The text under `NSLocalizedDescriptionKey`; without one, a text made of domain and code.
    [[nodiscard]] std::string localizedDescription() const;
    /// The error under `NSUnderlyingErrorKey`, or null.
    [[nodiscard]] ErrorPtr underlyingError() const noexcept;

  private:
    struct PELLUVIA_HIDDEN State;
    std::shared_ptr<const State> state_; // never null
};

} // namespace pelluvia
