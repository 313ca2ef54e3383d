// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/values/Export.h>

#include <string>
#include <string_view>
#include <utility>

namespace pelluvia {

/// The URL of a file. nil is an empty `std::optional<URL>`.
///
/// Threads: a plain value.
class PELLUVIA_EXPORT URL {
  public:
    /// The URL of the file at a path (UTF-8, absolute or relative to the working directory).
    [[nodiscard]] static URL fileURLWithPath(std::string_view path) {
        return URL(std::string(path));
    }

    /// The path, as it was given.
    [[nodiscard]] const std::string &path() const noexcept { return path_; }

    friend bool operator==(const URL &, const URL &) = default;

  private:
    explicit URL(std::string path) : path_(std::move(path)) {}

    std::string path_;
};

} // namespace pelluvia
