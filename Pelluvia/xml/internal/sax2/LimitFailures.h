// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/xml/internal/Failure.h>

/// \file
/// What is wrong with a document that asks for more than `xmlLimits` allow. Each message names the
/// limit.

namespace pelluvia::xml::limitFailures {

[[nodiscard]] Failure depth();
[[nodiscard]] Failure textSize();
/// Of one tag, comment, reference or other markup, or of blank space around the root.
[[nodiscard]] Failure markupSize();
[[nodiscard]] Failure valueSize();
[[nodiscard]] Failure declarationsSize();
[[nodiscard]] Failure attributes();
[[nodiscard]] Failure names();
[[nodiscard]] Failure nameMemory();
/// What entities and defaults of attributes add.
[[nodiscard]] Failure amplification();
/// Entities that refer to one another so deep that they may have no end; the library does not look
/// further.
[[nodiscard]] Failure entityDepth();

} // namespace pelluvia::xml::limitFailures
