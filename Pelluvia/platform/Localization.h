#pragma once

#include <Pelluvia/platform/Export.h>

#include <string>
#include <string_view>

namespace pelluvia {

/// The framework's message catalogue (gettext text domain).
inline constexpr const char *frameworkTextDomain = "Pelluvia";

/// The translation of an English text in a message catalogue, or the text itself where there is
/// none. The host chooses the language with the C library's `setlocale`; the framework never calls
/// it.
///
/// Threads: callable from any thread.
[[nodiscard]] PELLUVIA_EXPORT std::string localized(std::string_view text,
                                                    const char *domain = frameworkTextDomain);

} // namespace pelluvia
