#include <Pelluvia/platform/Localization.h>

#include <libintl.h>

namespace pelluvia {

std::string localized(std::string_view text, const char *domain) {
    const std::string key(text);
    if (key.empty()) {
        return key; // gettext would answer with the catalogue's header
    }
    const char *translation = dgettext(domain, key.c_str());
    return translation;
}

} // namespace pelluvia
