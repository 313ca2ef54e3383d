// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/values/Data.h>
#include <Pelluvia/values/Error.h>
#include <Pelluvia/values/Export.h>
#include <Pelluvia/values/URL.h>

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

namespace pelluvia {

/// Access to folders that the user grants. A sandboxed program may touch such folders only; this
/// class asks for one, keeps the grant in the user defaults, and later, in another process too,
/// turns it back into the folder's URL. Part of the storage component (link `Pelluvia::storage`).
///
///     GPSStorageAuthorization::authorizePath("/home/me/GPS", window, [](const ErrorPtr &error) {
///         if (error == nullptr) {
///             const auto folder = GPSStorageAuthorization::authorizedBookmarkURLForPath(
///                 "/home/me/GPS", nullptr);
///             // read and write in folder->path()
///         }
///     });
///
/// A grant belongs to the path that was asked for, byte by byte as it was given: "/GPS" and "/GPS/"
/// are two. The user may choose another folder than the one asked for; that is then the one granted
/// under this path. A grant stays until it is replaced by another one of the same path.
///
/// nil is `std::nullopt`, no path. `receiver` is the name of the class that receives the message: a
/// class of a host's own that passes its name has grants of its own.
///
/// Threads: no instances and no state but the user defaults. `authorizePath` belongs to the main
/// thread; the other methods may be called from any thread at any time.
class PELLUVIA_EXPORT GPSStorageAuthorization {
  public:
    /// Takes the outcome of a prompt: null when the folder was granted. What it throws is logged
    /// and goes no further.
    using Completion = std::function<void(const ErrorPtr &error)>;

    static constexpr std::string_view className = "GPSStorageAuthorization";

    GPSStorageAuthorization() = delete;

    /// The key of the user defaults under which the grant of a path is kept: the receiver's name, a
    /// colon, the path. Nothing for nil.
    [[nodiscard]] static std::optional<std::string>
    authorizedBookmarkKeyForPath(std::optional<std::string_view> path,
                                 std::string_view receiver = className);

    /// Keeps bookmark data, unchecked, as the grant of a path, in the place of an earlier one. For
    /// nil nothing is kept. Returns the reason when nothing was kept, as `UserDefaults::setObject`
    /// does; who does not care need not look.
    static std::error_code setAuthorizedBookmarkData(const Data &data,
                                                     std::optional<std::string_view> path,
                                                     std::string_view receiver = className);

    /// The folder that was granted for a path. Nothing when there is none, or when it is gone or
    /// cannot be read any more; that is logged, and **`error` is left untouched**. Only for nil an
    /// error (`gpsPluginErrorDomain`, `gpsPluginFailure`) is stored through `error`, unless that is
    /// null. So test the result, not the error.
    ///
    /// A folder that was renamed is found again, as far as `Bookmark` can, and the grant is not
    /// renewed. Another folder that has taken its place was not granted.
    [[nodiscard]] static std::optional<URL>
    authorizedBookmarkURLForPath(std::optional<std::string_view> path, ErrorPtr *error,
                                 std::string_view receiver = className);

    /// Asks the user, in a panel that is modal for the window, to grant a folder for the path, and
    /// returns at once. The path's own folder is shown first where the desktop can do that.
    ///
    /// `window` is a window as the desktop portal calls it ("x11:1a0002b", "wayland:..."), or empty
    /// for none; see `OpenPanel`.
    ///
    /// The completion is called once, later, on the main thread, and is kept until then. Its error
    /// is null when a folder was granted; `NSCocoaErrorDomain` with code `userCanceledPanel` when
    /// the user chose none; an error of `openPanelErrorDomain` when the user could not be asked;
    /// the error of the bookmark when the chosen folder cannot be kept, which is logged, too. Then
    /// nothing is kept and an earlier grant stays.
    ///
    /// An error of null does not say that the grant could be written to the user defaults: failures
    /// of that kind are in the log, and in the report of `authorizePathAndReport`.
    static void authorizePath(std::string_view path, std::string_view window, Completion completion,
                              std::string_view receiver = className);

    /// Takes the outcome of a prompt, as `Completion` does, and, where a folder was granted, why
    /// the grant could not be written to the user defaults, so that it is lost; nothing when it
    /// was written.
    using ReportCompletion = std::function<void(const ErrorPtr &error, std::error_code keeping)>;

    /// The same as `authorizePath` with a completion that is told whether the grant was kept.
    static void authorizePathAndReport(std::string_view path, std::string_view window,
                                       ReportCompletion completion,
                                       std::string_view receiver = className);
};

} // namespace pelluvia
