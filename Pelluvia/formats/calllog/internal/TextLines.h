// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/formats/calllog/internal/LineSource.h>
#include <Pelluvia/formats/internal/SourceProgress.h>

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace pelluvia {

/// The lines of a text in memory. The text and the progress, which is told of each line, are
/// borrowed.
class TextLines final : public LineSource {
  public:
    TextLines(std::string_view text, std::size_t longestLine,
              formats::SourceProgress &progress) noexcept
        : rest_(text), longestLine_(longestLine), progress_(progress) {}

    [[nodiscard]] Result next(std::string_view &line) override {
        if (rest_.empty()) {
            return Result::End;
        }
        line = rest_.substr(0, rest_.find('\n'));
        if (line.size() > longestLine_) {
            return Result::TooLong;
        }
        const std::size_t taken = std::min(line.size() + 1, rest_.size());
        rest_.remove_prefix(taken);
        progress_.add(taken);
        return Result::Line;
    }

  private:
    std::string_view rest_;
    std::size_t longestLine_;
    formats::SourceProgress &progress_;
};

} // namespace pelluvia
