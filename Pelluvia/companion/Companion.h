#pragma once

#include <Pelluvia/platform/Export.h>
#include <Pelluvia/platform/Scanner.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

/// \file
/// The three routines that the framework takes from its companion library.

namespace pelluvia {

class OutputFile;

/// Copies `source` into `destination` with the five characters that XML reserves replaced by their
/// entities and characters that XML 1.0 cannot hold by `?`, closed by a NUL, in at most `capacity`
/// bytes. What does not fit is cut at a whole character or entity. Returns `destination`.
extern "C" PELLUVIA_EXPORT char *SkerryCStringByMakingStandardXMLEntities(char *destination,
                                                                          const char *source,
                                                                          std::size_t capacity);

/// Writes the characters of a string to a stream.
PELLUVIA_EXPORT void SkerryCFStringFWrite(OutputFile &stream, std::string_view string);

/// The scanner operation `scanISO8601DateAsSeconds:`.
[[nodiscard]] PELLUVIA_EXPORT std::optional<std::int64_t>
scanISO8601DateAsSeconds(Scanner &scanner) noexcept;

} // namespace pelluvia
