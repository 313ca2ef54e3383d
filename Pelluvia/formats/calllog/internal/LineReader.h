// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/formats/calllog/internal/LineSource.h>
#include <Pelluvia/formats/internal/SourceProgress.h>
#include <Pelluvia/formats/internal/SourceWait.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <system_error>

namespace pelluvia {

/// The lines of an open file, one after the other. Memory grows with the longest line, not with the
/// file.
///
/// The descriptor is borrowed and read from where it stands; `wait` and `progress`, which is told
/// of what is read, are borrowed too. Threads: one at a time.
class LineReader final : public LineSource {
  public:
    LineReader(int descriptor, std::size_t longestLine, const formats::SourceWait &wait,
               formats::SourceProgress &progress);

    [[nodiscard]] Result next(std::string_view &line) override;
    [[nodiscard]] std::error_code failure() const noexcept override { return failure_; }

  private:
    [[nodiscard]] Result readMore();
    void makeRoom();

    int descriptor_;
    std::size_t longestLine_;
    const formats::SourceWait &wait_;
    formats::SourceProgress &progress_;
    std::string buffer_;       // its size is the room there is
    std::size_t begin_ = 0;    // of the line being read
    std::size_t searched_ = 0; // up to here there is no line end
    std::size_t end_ = 0;      // of what has been read
    std::error_code failure_;
};

} // namespace pelluvia
