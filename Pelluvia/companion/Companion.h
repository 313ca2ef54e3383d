#pragma once

#include <Pelluvia/platform/Export.h>
#include <Pelluvia/platform/Scanner.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

/// \file
/// The three routines that the framework takes from its companion library: XML escaping and string
/// output for the GPX writer, date reading for the importer.
///
/// Threads: the routines keep nothing; call them from any thread.

namespace pelluvia {

class OutputFile;

/// Copies `source` into `destination`, ready to stand in XML text or in a quoted attribute value,
/// and returns `destination`.
///
///  - `&`, `<`, `>`, `"` and `'` become `&amp;`, `&lt;`, `&gt;`, `&quot;` and `&apos;`.
///  - What XML 1.0 cannot hold becomes `?`: the control characters other than tab, line feed and
///    carriage return, and U+FFFE, U+FFFF and the surrogates in their three-byte UTF-8 form.
///  - Everything else is copied. Bytes above 127 are taken as UTF-8; one that is not part of a
///    well-formed sequence is copied as a character by itself, which it is in ISO-8859-1.
///
/// The result takes at most `capacity` bytes with its closing NUL. A longer one is cut before the
/// first character or entity that does not fit whole, so it stays well-formed. With a capacity of 1
/// the result is empty, with 0 nothing is written and `destination` may be null.
///
/// `source` ends with a NUL; null counts as empty. The two must not overlap.
extern "C" PELLUVIA_EXPORT char *SkerryCStringByMakingStandardXMLEntities(char *destination,
                                                                          const char *source,
                                                                          std::size_t capacity);

/// Writes the characters of a string to a stream as they are. A failure is the stream's to remember
/// (see `OutputFile::failure`).
PELLUVIA_EXPORT void SkerryCFStringFWrite(OutputFile &stream, std::string_view string);

/// The scanner operation `scanISO8601DateAsSeconds:`.
[[nodiscard]] PELLUVIA_EXPORT std::optional<std::int64_t>
scanISO8601DateAsSeconds(Scanner &scanner) noexcept;

} // namespace pelluvia
