// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/xml/internal/ContentDigest.h>
#include <Pelluvia/xml/internal/Source.h>

#include <optional>

namespace pelluvia::xml {

/// What a parse has found out about a document.
struct KnownContent {
    bool isUsual = false;                ///< the scanner has read all of it
    std::optional<SourceState> state;    ///< before it was read; nothing where there is none
    std::optional<ContentDigest> digest; ///< of what was read, from the beginning; of files only

    /// Whether `source`, which is open, still gives these bytes. What has not been touched has not
    /// changed; otherwise they are read again, and compared. Where there is no state, nobody knows.
    [[nodiscard]] bool isStillIn(const Source &source) const;
};

} // namespace pelluvia::xml
