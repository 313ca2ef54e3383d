#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <system_error>

namespace pelluvia {

/// The lines of an open file, one after the other. Memory grows with the longest line, not with the
/// file.
///
/// The descriptor is borrowed and read from where it stands. Threads: one at a time.
class LineReader {
  public:
    enum class Result {
        Line,    ///< a line was read
        End,     ///< there are no more
        TooLong, ///< the next line is longer than the limit; there is no way on
        Failed   ///< the file cannot be read; see `failure`
    };

    LineReader(int descriptor, std::size_t longestLine);

    /// Reads the next line. On `Line`, `line` is its text without the line end, valid until the
    /// next call. The last line may lack its line end.
    [[nodiscard]] Result next(std::string_view &line);

    /// Why reading failed.
    [[nodiscard]] std::error_code failure() const noexcept { return failure_; }

  private:
    [[nodiscard]] Result readMore();
    void makeRoom();

    int descriptor_;
    std::size_t longestLine_;
    std::string buffer_;       // its size is the room there is
    std::size_t begin_ = 0;    // of the line being read
    std::size_t searched_ = 0; // up to here there is no line end
    std::size_t end_ = 0;      // of what has been read
    std::error_code failure_;
};

} // namespace pelluvia
