// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/values/Error.h>
#include <Pelluvia/values/Export.h>
#include <Pelluvia/values/URL.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

/// \file
/// The prompt that asks the user for a folder. Part of the storage component (link
/// `Pelluvia::storage`).

namespace pelluvia {

/// How a panel ended. Other numbers mean that nothing was chosen, as cancelling does.
namespace modalResponse {
/// The user chose.
inline constexpr std::int64_t ok = 1;
/// The user closed the panel without choosing.
inline constexpr std::int64_t cancel = 0;
/// The panel could not be shown, or ended by a failure; `OpenPanel::error` tells it.
inline constexpr std::int64_t abort = -1001;
} // namespace modalResponse

/// Errors of the desktop portal. Codes are never renumbered.
inline constexpr std::string_view openPanelErrorDomain = "com.Quorvel.Pelluvia.OpenPanel";
namespace openPanelError {
/// There is no session bus, or it cannot be reached.
inline constexpr std::int64_t noSessionBus = 1;
/// Nothing on the session bus is, or can be started as, a desktop portal.
inline constexpr std::int64_t noPortal = 2;
/// The portal cannot ask for folders: it has no file chooser, or one before version 3.
inline constexpr std::int64_t portalTooOld = 3;
/// The portal, or the session bus with it, went away or fell silent while it was asked.
inline constexpr std::int64_t portalGone = 4;
/// The portal's answer cannot be understood.
inline constexpr std::int64_t badAnswer = 5;
/// The portal would not show the prompt.
inline constexpr std::int64_t refused = 6;
} // namespace openPanelError

/// A panel in which the user chooses one folder; files cannot be chosen. It has the desktop's own
/// title and texts. In a sandbox the choice is what gives the program access to the folder.
///
/// The panel is the file chooser of the desktop portal (`org.freedesktop.portal.FileChooser`), over
/// the session bus that `DBUS_SESSION_BUS_ADDRESS` names, or the one in `$XDG_RUNTIME_DIR`.
///
/// Threads: the main thread, which runs GLib's default main context (a `GMainLoop`, or a toolkit
/// that has one inside).
class PELLUVIA_EXPORT OpenPanel : public std::enable_shared_from_this<OpenPanel> {
  public:
    /// Takes how the panel ended, see `modalResponse`. What it throws is logged and goes no
    /// further.
    using CompletionHandler = std::function<void(std::int64_t response)>;

    /// A new panel.
    [[nodiscard]] static std::shared_ptr<OpenPanel> openPanel();

    /// The folder that the panel shows first, if the desktop's portal (version 4) knows how; else,
    /// and where there is no such folder, it shows what it likes.
    void setDirectoryURL(const URL &folder) { directory_ = folder.path(); }

    /// Shows the panel, modal for a window, and returns at once. The handler is called once, later,
    /// on the main context, and is kept alive until then, as the panel is.
    ///
    /// `window` is what the portal calls a window: "x11:" and the window's number in hexadecimal
    /// digits, or "wayland:" and its handle. Empty, or not UTF-8: the panel belongs to no window.
    ///
    /// A panel is shown once.
    void beginSheetModalForWindow(std::string_view window, CompletionHandler handler);

    /// The folder that was chosen; nothing unless the panel ended with `modalResponse::ok`.
    [[nodiscard]] const std::optional<URL> &url() const noexcept { return url_; }
    /// Why it ended with `modalResponse::abort`; else null.
    [[nodiscard]] const ErrorPtr &error() const noexcept { return error_; }

  private:
    OpenPanel() = default;

    std::string directory_;
    std::optional<URL> url_;
    ErrorPtr error_;
};

} // namespace pelluvia
