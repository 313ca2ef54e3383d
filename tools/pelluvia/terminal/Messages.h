// SPDX-License-Identifier: MIT

#pragma once

#include <string>
#include <string_view>

/// \file
/// What the host says to its user on standard error.

namespace pelluvia::host {

/// The text with what could steer the user's terminal, or deceive who reads it there, escaped as
/// bytes in the way of shells ($'\x1B'): control characters, those that change the direction of
/// writing, and bytes that are not UTF-8. So nothing out of a file or a file's name acts.
[[nodiscard]] std::string harmless(std::string_view text);

/// Writes a line: the text, made harmless, and a line end.
void say(std::string_view text);

/// The same with the program's name before it.
void complain(std::string_view text);

/// Writes bytes that are soon replaced by others, as those of a progress bar: where nobody takes
/// them at once, they are left out. So a terminal that stands still holds nothing up.
void show(std::string_view bytes);

/// How a source or a target is called in messages.
[[nodiscard]] std::string sourceName(const std::string &path);
[[nodiscard]] std::string targetName(const std::string &path);

} // namespace pelluvia::host
