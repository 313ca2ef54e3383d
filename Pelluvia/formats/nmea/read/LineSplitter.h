// SPDX-License-Identifier: MIT

#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace pelluvia::nmea {

/// Whether a line has its end, or stops where the next sentence or the end of the input cut it off.
enum class LineEnd : std::uint8_t { There, Missing };

/// Cuts what a receiver sends into lines, whatever it is: text, noise, the binary messages of
/// another protocol. A line ends at CR or LF, in any combination, and before each "$": a sentence
/// starts there even when the end of the line before it was lost. Empty lines are left out.
///
///     LineSplitter splitter;
///     while (… more bytes …) {
///         splitter.feed(bytes, [](std::string_view line, LineEnd end) { … });
///     }
///     splitter.finish([](std::string_view line, LineEnd end) { … });
///
/// Memory does not grow: a line of more than `longestLine` bytes is counted and dropped.
///
/// Threads: one at a time.
class LineSplitter {
  public:
    /// Takes the next bytes and calls `use(line, end)` for each line that ends in them. A line is
    /// valid during the call.
    template <class Use>
    void feed(std::string_view bytes, Use &&use) {
        while (!bytes.empty()) {
            // The "$" that begins a line does not end it.
            const std::size_t skip = begun_.empty() && !isDropping_ && bytes.front() == '$' ? 1 : 0;
            const std::size_t length = lengthOfLine(bytes, skip);
            append(bytes.substr(0, length));
            if (length == std::string_view::npos) {
                keep();
                return;
            }
            const bool isCutOff = bytes[length] == '$';
            end(use, isCutOff ? LineEnd::Missing : LineEnd::There);
            bytes.remove_prefix(isCutOff ? length : length + 1);
        }
    }

    /// The input has ended: what there is of the last line is a line.
    template <class Use>
    void finish(Use &&use) {
        end(use, LineEnd::Missing);
    }

    /// So many lines were dropped because of their length.
    [[nodiscard]] std::int64_t droppedLines() const noexcept { return droppedLines_; }

    /// Three times the longest sentence that receivers are known to send, and more.
    static constexpr std::size_t longestLine = 1024;

  private:
    template <class Use>
    void end(Use &use, LineEnd how) {
        if (!line_.empty()) {
            use(line_, how);
        }
        forget();
    }
    [[nodiscard]] static std::size_t lengthOfLine(std::string_view bytes,
                                                  std::size_t from) noexcept;
    void append(std::string_view piece);
    void keep();
    void forget() noexcept;

    std::string begun_;     ///< the beginning of the line, kept from earlier bytes
    std::string_view line_; ///< the line so far: a part of the bytes being taken, or all of begun_
    bool isDropping_ = false;
    std::int64_t droppedLines_ = 0;
};

} // namespace pelluvia::nmea
