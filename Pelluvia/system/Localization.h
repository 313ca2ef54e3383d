// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/values/Export.h>

#include <string>
#include <string_view>

namespace pelluvia {

/// The framework's message catalogue (gettext text domain).
inline constexpr const char *frameworkTextDomain = "Pelluvia";

/// The translation of an English text in a message catalogue, or the text itself where there is
/// none. The host chooses the language with the C library's `setlocale`, and with `bindtextdomain`
/// the folder of the catalogues where it is not the system's; the framework calls neither. A null
/// domain is the one that the host chose with `textdomain`.
///
/// The framework's own catalogue gives UTF-8 in every locale. A host that has a catalogue of its
/// own asks for that with `bind_textdomain_codeset`.
///
/// Threads: callable from any thread.
[[nodiscard]] PELLUVIA_EXPORT std::string localized(std::string_view text,
                                                    const char *domain = frameworkTextDomain);

} // namespace pelluvia
