// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/model/ReadingProgress.h>

#include <cstddef>

namespace pelluvia::formats {

/// Counts what is read of one source.
///
/// Threads: a plain value.
class SourceProgress {
  public:
    SourceProgress() = default;
    /// Of text in memory.
    explicit SourceProgress(std::size_t size) noexcept { progress_.size = size; }
    /// Of an open file, from where it stands; without a size where the system does not tell one.
    explicit SourceProgress(int descriptor) noexcept;

    /// So many more bytes have been read.
    void add(std::size_t bytes) noexcept;

    [[nodiscard]] const ReadingProgress &progress() const noexcept { return progress_; }

  private:
    ReadingProgress progress_;
};

} // namespace pelluvia::formats
