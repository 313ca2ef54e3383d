// SPDX-License-Identifier: MIT

#include <Pelluvia/storage/internal/PortalErrors.h>

#include <Pelluvia/storage/OpenPanel.h>
#include <Pelluvia/system/Localization.h>

namespace pelluvia::storage {

namespace {

std::string_view textOf(std::int64_t code) {
    switch (code) {
    case openPanelError::noSessionBus:
        return "There is no session bus";
    case openPanelError::noPortal:
        return "There is no desktop portal on the session bus";
    case openPanelError::portalTooOld:
        return "The desktop portal is too old to ask for a folder";
    case openPanelError::portalGone:
        return "The desktop portal went away while it was asked";
    case openPanelError::badAnswer:
        return "The desktop portal gave an answer that cannot be understood";
    default:
        return "The desktop portal would not ask for a folder";
    }
}

} // namespace

ErrorPtr portalError(std::int64_t code, const std::string &detail) {
    std::string text = localized(textOf(code));
    if (!detail.empty()) {
        text += ": " + detail;
    }
    return Error::make(openPanelErrorDomain, code,
                       {{std::string(NSLocalizedDescriptionKey), text}});
}

std::int64_t portalErrorCode(const GError &error, std::int64_t otherwise) {
    if (error.domain == G_IO_ERROR) {
        // Of a call on a connection all of these mean that it broke or that nobody answered.
        return error.code == G_IO_ERROR_CLOSED || error.code == G_IO_ERROR_CONNECTION_CLOSED ||
                       error.code == G_IO_ERROR_TIMED_OUT || error.code == G_IO_ERROR_BROKEN_PIPE
                   ? openPanelError::portalGone
                   : otherwise;
    }
    if (error.domain != G_DBUS_ERROR) {
        return otherwise;
    }
    switch (error.code) {
    case G_DBUS_ERROR_SERVICE_UNKNOWN:
    case G_DBUS_ERROR_NAME_HAS_NO_OWNER:
    case G_DBUS_ERROR_SPAWN_EXEC_FAILED:
    case G_DBUS_ERROR_SPAWN_FORK_FAILED:
    case G_DBUS_ERROR_SPAWN_CHILD_EXITED:
    case G_DBUS_ERROR_SPAWN_CHILD_SIGNALED:
    case G_DBUS_ERROR_SPAWN_FAILED:
    case G_DBUS_ERROR_SPAWN_SERVICE_NOT_FOUND:
        return openPanelError::noPortal;
    case G_DBUS_ERROR_NO_REPLY:
    case G_DBUS_ERROR_DISCONNECTED:
    case G_DBUS_ERROR_TIMED_OUT:
    case G_DBUS_ERROR_TIMEOUT:
        return openPanelError::portalGone;
    default:
        return otherwise;
    }
}

} // namespace pelluvia::storage
