// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/system/OutputFile.h>
#include <Pelluvia/values/Export.h>

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace pelluvia {

/// JSON tokens onto a file. Knows how numbers and strings are spelled; where they belong is the
/// caller's affair.
///
/// Reals and integers can be told apart in the text: a real always has a point or an exponent. The
/// digits are the fewest that read back to the same value. Neither depends on the locale.
///
///     JSONText json(*file);
///     json.raw("{\"name\":");
///     json.string("Caf\u00e9 \"Lago\"");
///     json.raw(",\"speed\":");
///     json.real(2.5F);
///     json.raw("}\n");
///
/// The file is borrowed. Threads: as for the file.
class PELLUVIA_EXPORT JSONText {
  public:
    explicit JSONText(OutputFile &file) noexcept : file_(file) {}

    /// Text that is JSON already.
    void raw(std::string_view json) { file_.write(json); }
    void integer(std::int64_t value);
    /// A real that is not finite becomes {"real":"NaN"}, {"real":"Infinity"} or
    /// {"real":"-Infinity"}, since JSON has no number for it.
    void real(double value);
    /// The same with the digits that a 32-bit float needs.
    void real(float value);
    /// A string in quotes, escaped where JSON asks for it and nowhere else. Bytes that are not
    /// well-formed UTF-8 become U+FFFD, each.
    void string(std::string_view text);

    /// The most bytes that `writeReal` writes.
    static constexpr std::size_t maxRealText = 32;
    /// The text of `real`, written at `out`; returns the position behind it.
    [[nodiscard]] static char *writeReal(char *out, double value) noexcept;

  private:
    OutputFile &file_;
};

} // namespace pelluvia
