// SPDX-License-Identifier: MIT

#pragma once

#include <string_view>
#include <system_error>

namespace pelluvia {

/// Gives the lines of a text, one after the other.
class LineSource {
  public:
    enum class Result {
        Line,    ///< a line was read
        End,     ///< there are no more
        TooLong, ///< the next line is longer than the limit; there is no way on
        Stopped, ///< a stop was requested while the source was waited for
        Failed   ///< the source cannot be read; see `failure`
    };

    virtual ~LineSource() = default;

    /// Reads the next line. On `Line`, `line` is its text without the line end, valid until the
    /// next call. The last line may lack its line end.
    [[nodiscard]] virtual Result next(std::string_view &line) = 0;

    /// Why reading failed.
    [[nodiscard]] virtual std::error_code failure() const noexcept { return {}; }
};

} // namespace pelluvia
