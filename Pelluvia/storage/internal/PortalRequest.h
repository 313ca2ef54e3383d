// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/storage/internal/GLibPointers.h>
#include <Pelluvia/values/Error.h>

#include <gio/gio.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace pelluvia::storage {

/// What the portal is asked.
struct PortalQuestion {
    std::string parentWindow;  ///< UTF-8; empty: none
    std::string currentFolder; ///< absolute; empty: the portal's choice
};

/// What became of it: an error, or the portal's response and, for response 0, at least one URI.
struct PortalAnswer {
    ErrorPtr error;
    std::uint32_t response = 0;
    std::vector<std::string> uris;
};

/// One prompt for a folder: the conversation with the desktop portal from connecting to the answer.
///
/// Each has a connection to the bus of its own. So the portal closes the dialog when the request
/// ends, whatever the reason, and the host's connection and its settings are left alone.
///
/// It holds itself alive, through the operations that are under way, until it has ended.
///
/// Threads: GLib's default main context, except `begin`, which any thread may call.
class PortalRequest : public std::enable_shared_from_this<PortalRequest> {
  public:
    using Handler = std::function<void(const PortalAnswer &)>;

    /// Starts a request and returns at once. The handler is called once, on the default main
    /// context, then let go.
    static void begin(PortalQuestion question, Handler handler);

    PortalRequest(PortalQuestion question, Handler handler);
    PortalRequest(const PortalRequest &) = delete;
    PortalRequest &operator=(const PortalRequest &) = delete;
    ~PortalRequest();

  private:
    using Step = void (PortalRequest::*)(GVariantPointer result, GErrorPointer error);
    struct Pending;

    // The steps, each begun when the one before it has its answer.
    void connect();
    void askVersion();
    void gotVersion(GVariantPointer result, GErrorPointer error);
    void askOwner();
    void gotOwner(GVariantPointer result, GErrorPointer error);
    void openFile();
    void gotHandle(GVariantPointer result, GErrorPointer error);
    void gotResponse(GVariant *parameters);

    void call(const char *destination, const char *path, const char *interface, const char *method,
              GVariant *arguments, Step step);
    void watchOwner();
    void listenForResponse(const std::string &handle);
    void stopListening(guint &subscription);

    void fail(std::int64_t code, const std::string &text);
    /// Ends with the error of a call; `otherwise` is the code where it says nothing special.
    void fail(const GError &error, std::int64_t otherwise);
    void finish(const PortalAnswer &answer);
    [[nodiscard]] bool hasEnded() const noexcept { return !handler_; }

    // Without memory, the program ends: nothing may be thrown through C.
    // NOLINTBEGIN(bugprone-exception-escape)
    static void connected(GObject *source, GAsyncResult *result, gpointer data) noexcept;
    static void answered(GObject *source, GAsyncResult *result, gpointer data) noexcept;
    // NOLINTEND(bugprone-exception-escape)

    PortalQuestion question_;
    Handler handler_;
    GObjectPointer<GDBusConnection> connection_;
    GObjectPointer<GCancellable> cancellable_;
    gulong closedSignal_ = 0;
    guint ownerSubscription_ = 0;
    guint responseSubscription_ = 0;
    std::string owner_;  ///< the portal's unique name on the bus
    std::string handle_; ///< of the request, an object path
    std::string token_;  ///< the last part of it
};

} // namespace pelluvia::storage
