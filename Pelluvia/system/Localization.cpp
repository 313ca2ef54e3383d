// SPDX-License-Identifier: MIT

#include <Pelluvia/system/Localization.h>

#include <libintl.h>

namespace pelluvia {

std::string localized(std::string_view text, const char *domain) {
    // Our strings are UTF-8 whatever the locale's own encoding is.
    [[maybe_unused]] static const char *const encoding =
        bind_textdomain_codeset(frameworkTextDomain, "UTF-8");

    std::string key(text);
    if (key.empty()) {
        return key; // gettext would answer with the catalogue's header
    }
    const char *translation = dgettext(domain, key.c_str());
    if (translation == key.c_str()) {
        return key; // no translation; and a NUL in the text must not cut it
    }
    return translation;
}

} // namespace pelluvia
