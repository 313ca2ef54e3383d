// SPDX-License-Identifier: MIT

#pragma once

#include <cstdint>
#include <optional>

namespace pelluvia {

/// How far a producer that reads has come, in bytes of its source. Producers that read files have a
/// method `readingProgress`, to be asked from within the calls that they make, or between them, on
/// their thread. A progress bar that goes by it is right where the counts of the stream are not.
struct ReadingProgress {
    /// Bytes read so far, of all passes where the source is read more than once.
    std::uint64_t position = 0;
    /// Bytes that will have been read at the end, of all passes; nothing where the source has no
    /// size, as a pipe has none. `position` never goes beyond it.
    std::optional<std::uint64_t> size;
};

} // namespace pelluvia
