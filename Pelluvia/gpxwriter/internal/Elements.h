#pragma once

#include <Pelluvia/platform/OutputFile.h>

#include <cstdint>
#include <string_view>

/// \file
/// The pieces of elements that all writer functions share.

namespace pelluvia {

/// Writes the text with XML's reserved characters escaped, cut to less than 512 bytes. Null is
/// empty.
void writeEscaped(OutputFile &file, const char *text);

/// Writes `before`, the number as `%d`, `after`.
void writeIntegerBetween(OutputFile &file, std::string_view before, std::int32_t value,
                         std::string_view after);

/// Writes `before`, the number as `%f`, `after`.
void writeFixedBetween(OutputFile &file, std::string_view before, double value,
                       std::string_view after);

} // namespace pelluvia
