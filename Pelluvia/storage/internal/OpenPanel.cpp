// SPDX-License-Identifier: MIT

#include <Pelluvia/storage/OpenPanel.h>

#include <Pelluvia/storage/internal/PortalErrors.h>
#include <Pelluvia/storage/internal/PortalRequest.h>

#include <utility>

namespace pelluvia {

namespace {

/// Of several folders the first: more than one was not asked for.
std::optional<URL> folderOf(const storage::PortalAnswer &answer) {
    gchar *rawHost = nullptr;
    const storage::GMemory<gchar> path(
        g_filename_from_uri(answer.uris.front().c_str(), &rawHost, nullptr));
    const storage::GMemory<gchar> host(rawHost);
    const bool isHere = path != nullptr && host == nullptr;
    return isHere ? std::optional<URL>(URL::fileURLWithPath(path.get())) : std::nullopt;
}

/// The path as the portal wants it: absolute, and without a NUL.
std::string folderToShow(const std::string &path) {
    if (path.empty() || path.find('\0') != std::string::npos) {
        return {};
    }
    const storage::GMemory<gchar> absolute(g_canonicalize_filename(path.c_str(), nullptr));
    return absolute.get();
}

/// Only what can be part of a message is one.
std::string windowNamed(std::string_view window) {
    const bool isText =
        g_utf8_validate(window.data(), static_cast<gssize>(window.size()), nullptr) != FALSE;
    return isText ? std::string(window) : std::string();
}

} // namespace

std::shared_ptr<OpenPanel> OpenPanel::openPanel() {
    struct Shared : OpenPanel {};
    return std::make_shared<Shared>();
}

void OpenPanel::beginSheetModalForWindow(std::string_view window, CompletionHandler handler) {
    storage::PortalRequest::begin(
        {.parentWindow = windowNamed(window), .currentFolder = folderToShow(directory_)},
        [panel = shared_from_this(),
         handler = std::move(handler)](const storage::PortalAnswer &answer) {
            std::int64_t response = modalResponse::cancel;
            panel->error_ = answer.error;
            if (answer.error == nullptr && answer.response == 0) {
                response = modalResponse::ok;
                panel->url_ = folderOf(answer);
                if (!panel->url_) {
                    panel->error_ =
                        storage::portalError(openPanelError::badAnswer, answer.uris.front());
                }
            }
            if (handler) {
                handler(panel->error_ == nullptr ? response : modalResponse::abort);
            }
        });
}

} // namespace pelluvia
