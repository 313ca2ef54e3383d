// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/xml/internal/scan/StartTag.h>

#include <string_view>

/// \file
/// The markup that is no tag. All functions look at a text that ends at `end` with zeros behind,
/// and set `after` to the place behind what they have read.

namespace pelluvia::xml::scan {

/// Whether the text at `at` begins with `opening`.
[[nodiscard]] Look begins(const char *at, const char *end, std::string_view opening) noexcept;

/// `<?xml version="1.0" ... ?>`, of which nothing needs to be known: the encoding was found out
/// before. Refused when it is not there.
[[nodiscard]] Look readXMLDeclaration(const char *at, const char *end, const char *&after) noexcept;

/// A comment, at `<!--`.
[[nodiscard]] Look readComment(const char *at, const char *end, const char *&after) noexcept;

/// A processing instruction, at `<?`. Long ones are refused.
[[nodiscard]] Look readInstruction(const char *at, const char *end, const char *&after) noexcept;

/// A CDATA section, at `<![CDATA[`, and the text in it.
[[nodiscard]] Look readCDATA(const char *at, const char *end, std::string_view &text,
                             const char *&after) noexcept;

} // namespace pelluvia::xml::scan
