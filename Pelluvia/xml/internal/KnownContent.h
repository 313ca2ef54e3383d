#pragma once

#include <Pelluvia/xml/internal/Source.h>

#include <optional>

namespace pelluvia::xml {

/// What a parse has found out about a document.
struct KnownContent {
    bool isUsual = false;             ///< the scanner has read all of it
    std::optional<SourceState> state; ///< when the parse began; nothing where there is none
};

} // namespace pelluvia::xml
