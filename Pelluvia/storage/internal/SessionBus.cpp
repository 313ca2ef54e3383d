// SPDX-License-Identifier: MIT

#include <Pelluvia/storage/internal/SessionBus.h>

#include <Pelluvia/storage/internal/GLibPointers.h>

#include <cstdlib>
#include <gio/gio.h>
#include <sys/stat.h>

namespace pelluvia::storage {

std::string sessionBusAddress() {
    const char *const set =
        std::getenv("DBUS_SESSION_BUS_ADDRESS"); // NOLINT(concurrency-mt-unsafe)
    if (set != nullptr && *set != '\0') {
        return set;
    }
    const char *const runtime = std::getenv("XDG_RUNTIME_DIR"); // NOLINT(concurrency-mt-unsafe)
    if (runtime == nullptr || *runtime != '/') {
        return {};
    }
    const std::string socket = std::string(runtime) + "/bus";
    struct stat status {};
    if (::stat(socket.c_str(), &status) != 0 || !S_ISSOCK(status.st_mode)) {
        return {};
    }
    const GMemory<gchar> escaped(g_dbus_address_escape_value(socket.c_str()));
    return std::string("unix:path=") + escaped.get();
}

} // namespace pelluvia::storage
