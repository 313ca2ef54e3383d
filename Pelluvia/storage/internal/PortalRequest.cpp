// SPDX-License-Identifier: MIT

#include <Pelluvia/storage/internal/PortalRequest.h>

#include <Pelluvia/storage/OpenPanel.h>
#include <Pelluvia/storage/internal/PortalErrors.h>
#include <Pelluvia/storage/internal/SessionBus.h>
#include <Pelluvia/system/Log.h>

#include <algorithm>
#include <exception>
#include <utility>

namespace pelluvia::storage {

namespace {

constexpr const char *portalName = "org.freedesktop.portal.Desktop";
constexpr const char *portalPath = "/org/freedesktop/portal/desktop";
constexpr const char *fileChooser = "org.freedesktop.portal.FileChooser";
constexpr const char *requestInterface = "org.freedesktop.portal.Request";
constexpr const char *busName = "org.freedesktop.DBus";
constexpr const char *busPath = "/org/freedesktop/DBus";

/// The first version of the file chooser that can ask for folders.
constexpr std::uint32_t firstVersionWithFolders = 3;
/// How long a call may take, in milliseconds; the portal may have to be started first. The user's
/// answer is a signal, not the answer of a call, and may take any time.
constexpr int callTimeout = 60'000;

/// Where the portal will put the request with a token of a client: known before the call, so that
/// one can listen before it is made.
std::string requestPath(std::string_view uniqueName, const std::string &token) {
    std::string sender(uniqueName.substr(uniqueName.starts_with(':') ? 1 : 0));
    std::replace(sender.begin(), sender.end(), '.', '_');
    return std::string(portalPath) + "/request/" + sender + "/" + token;
}

std::string newToken() {
    // Not guessed easily: another program of the user's shall not listen in our place.
    const GMemory<gchar> uuid(g_uuid_string_random());
    std::string token = std::string("pelluvia_") + uuid.get();
    std::replace(token.begin(), token.end(), '-', '_');
    return token;
}

} // namespace

/// What an operation under way holds: the request and what comes next.
struct PortalRequest::Pending {
    std::shared_ptr<PortalRequest> request;
    Step step = nullptr;

    /// For C to keep; `taken` brings it back.
    [[nodiscard]] static gpointer given(std::shared_ptr<PortalRequest> request,
                                        Step step = nullptr) {
        return std::make_unique<Pending>(Pending{std::move(request), step}).release();
    }
    [[nodiscard]] static std::unique_ptr<Pending> taken(gpointer data) {
        return std::unique_ptr<Pending>(static_cast<Pending *>(data));
    }
    /// Lets it go.
    static void release(gpointer data) noexcept { const auto pending = taken(data); }
    /// The request, while the operation goes on.
    [[nodiscard]] static PortalRequest &of(gpointer data) noexcept {
        return *static_cast<Pending *>(data)->request;
    }
};

// What a handler throws, `finish` catches. What else may be thrown (there is no memory) must not
// pass through C, and ends the program.
// NOLINTBEGIN(bugprone-exception-escape)

PortalRequest::PortalRequest(PortalQuestion question, Handler handler)
    : question_(std::move(question)),
      handler_(std::move(handler)),
      cancellable_(g_cancellable_new()),
      token_(newToken()) {}

PortalRequest::~PortalRequest() = default;

void PortalRequest::begin(PortalQuestion question, Handler handler) {
    auto request = std::make_shared<PortalRequest>(std::move(question), std::move(handler));
    // From the main context, so that all that follows is called there, whichever context the
    // caller's thread has; and never inside of this call.
    GSource *const source = g_idle_source_new();
    g_source_set_priority(source, G_PRIORITY_DEFAULT);
    g_source_set_callback(
        source,
        [](gpointer data) noexcept -> gboolean {
            Pending::of(data).connect();
            return G_SOURCE_REMOVE;
        },
        Pending::given(std::move(request)), Pending::release);
    g_source_attach(source, nullptr);
    g_source_unref(source);
}

void PortalRequest::connect() {
    const std::string address = sessionBusAddress();
    if (address.empty()) {
        fail(openPanelError::noSessionBus, "");
        return;
    }
    g_dbus_connection_new_for_address(
        address.c_str(),
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr, cancellable_.get(), connected, Pending::given(shared_from_this()));
}

void PortalRequest::connected(GObject * /*source*/, GAsyncResult *result, gpointer data) noexcept {
    const auto pending = Pending::taken(data);
    PortalRequest &self = *pending->request;
    GError *raw = nullptr;
    self.connection_.reset(g_dbus_connection_new_for_address_finish(result, &raw));
    const GErrorPointer error(raw);
    if (self.hasEnded()) {
        return;
    }
    if (self.connection_ == nullptr) {
        self.fail(openPanelError::noSessionBus, error->message);
        return;
    }
    if (g_dbus_connection_is_closed(self.connection_.get()) != FALSE) {
        self.fail(openPanelError::portalGone, "");
        return;
    }
    self.watchOwner();
    self.askVersion();
}

void PortalRequest::watchOwner() {
    closedSignal_ = g_signal_connect_data(
        connection_.get(), "closed",
        G_CALLBACK(+[](GDBusConnection * /*connection*/, gboolean /*vanished*/, GError * /*error*/,
                       gpointer data) noexcept {
            Pending::of(data).fail(openPanelError::portalGone, "");
        }),
        Pending::given(shared_from_this()),
        [](gpointer data, GClosure * /*closure*/) noexcept { Pending::release(data); },
        static_cast<GConnectFlags>(0));
    // That a portal appears is no news: it may be started by our first call.
    ownerSubscription_ = g_dbus_connection_signal_subscribe(
        connection_.get(), busName, busName, "NameOwnerChanged", busPath, portalName,
        G_DBUS_SIGNAL_FLAGS_NONE,
        [](GDBusConnection * /*connection*/, const gchar * /*sender*/, const gchar * /*path*/,
           const gchar * /*interface*/, const gchar * /*signal*/, GVariant *parameters,
           gpointer data) noexcept {
            const gchar *oldOwner = "";
            if (g_variant_is_of_type(parameters, G_VARIANT_TYPE("(sss)")) != FALSE) {
                g_variant_get(parameters, "(&s&s&s)", nullptr, &oldOwner, nullptr);
            }
            if (*oldOwner != '\0') {
                Pending::of(data).fail(openPanelError::portalGone, "");
            }
        },
        Pending::given(shared_from_this()), Pending::release);
}

void PortalRequest::call(const char *destination, const char *path, const char *interface,
                         const char *method, GVariant *arguments, Step step) {
    g_dbus_connection_call(connection_.get(), destination, path, interface, method, arguments,
                           nullptr, G_DBUS_CALL_FLAGS_NONE, callTimeout, cancellable_.get(),
                           answered, Pending::given(shared_from_this(), step));
}

void PortalRequest::answered(GObject *source, GAsyncResult *result, gpointer data) noexcept {
    const auto pending = Pending::taken(data);
    GError *raw = nullptr;
    GVariantPointer answer(
        g_dbus_connection_call_finish(G_DBUS_CONNECTION(source), result, &raw)); // NOLINT
    GErrorPointer error(raw);
    if (!pending->request->hasEnded()) {
        (*pending->request.*pending->step)(std::move(answer), std::move(error));
    }
}

void PortalRequest::askVersion() {
    call(portalName, portalPath, "org.freedesktop.DBus.Properties", "Get",
         g_variant_new("(ss)", fileChooser, "version"), &PortalRequest::gotVersion);
}

void PortalRequest::gotVersion(GVariantPointer result, GErrorPointer error) {
    if (error != nullptr) {
        // A portal without a file chooser has no such property either.
        fail(*error, openPanelError::portalTooOld);
        return;
    }
    std::uint32_t version = 0;
    if (g_variant_is_of_type(result.get(), G_VARIANT_TYPE("(v)")) != FALSE) {
        GVariant *raw = nullptr;
        g_variant_get(result.get(), "(v)", &raw);
        const GVariantPointer value(raw);
        if (g_variant_is_of_type(value.get(), G_VARIANT_TYPE_UINT32) != FALSE) {
            version = g_variant_get_uint32(value.get());
        }
    }
    if (version < firstVersionWithFolders) {
        fail(openPanelError::portalTooOld, "version " + std::to_string(version));
        return;
    }
    askOwner();
}

void PortalRequest::askOwner() {
    // The unique name: no other program on the bus can send a signal under it.
    call(busName, busPath, busName, "GetNameOwner", g_variant_new("(s)", portalName),
         &PortalRequest::gotOwner);
}

void PortalRequest::gotOwner(GVariantPointer result, GErrorPointer error) {
    if (error != nullptr) {
        fail(*error, openPanelError::portalGone);
        return;
    }
    const gchar *owner = "";
    if (g_variant_is_of_type(result.get(), G_VARIANT_TYPE("(s)")) != FALSE) {
        g_variant_get(result.get(), "(&s)", &owner);
    }
    // To another name GIO would make no call, and none would be answered.
    if (g_dbus_is_unique_name(owner) == FALSE) {
        fail(openPanelError::badAnswer, "no owner");
        return;
    }
    owner_ = owner;
    openFile();
}

void PortalRequest::openFile() {
    listenForResponse(requestPath(g_dbus_connection_get_unique_name(connection_.get()), token_));
    GVariantBuilder options;
    g_variant_builder_init(&options, G_VARIANT_TYPE_VARDICT);
    g_variant_builder_add(&options, "{sv}", "handle_token", g_variant_new_string(token_.c_str()));
    g_variant_builder_add(&options, "{sv}", "modal", g_variant_new_boolean(TRUE));
    g_variant_builder_add(&options, "{sv}", "directory", g_variant_new_boolean(TRUE));
    if (!question_.currentFolder.empty()) {
        g_variant_builder_add(&options, "{sv}", "current_folder",
                              g_variant_new_bytestring(question_.currentFolder.c_str()));
    }
    call(owner_.c_str(), portalPath, fileChooser, "OpenFile",
         g_variant_new("(ssa{sv})", question_.parentWindow.c_str(), "", &options),
         &PortalRequest::gotHandle);
}

void PortalRequest::gotHandle(GVariantPointer result, GErrorPointer error) {
    if (error != nullptr) {
        fail(*error, openPanelError::refused);
        return;
    }
    if (g_variant_is_of_type(result.get(), G_VARIANT_TYPE("(o)")) == FALSE) {
        fail(openPanelError::badAnswer, "no request");
        return;
    }
    const gchar *handle = "";
    g_variant_get(result.get(), "(&o)", &handle);
    if (handle_ != handle) { // portals before the handle's token was known chose their own
        listenForResponse(handle);
    }
}

void PortalRequest::listenForResponse(const std::string &handle) {
    stopListening(responseSubscription_);
    handle_ = handle;
    responseSubscription_ = g_dbus_connection_signal_subscribe(
        connection_.get(), owner_.c_str(), requestInterface, "Response", handle.c_str(), nullptr,
        G_DBUS_SIGNAL_FLAGS_NONE,
        [](GDBusConnection * /*connection*/, const gchar * /*sender*/, const gchar * /*path*/,
           const gchar * /*interface*/, const gchar * /*signal*/, GVariant *parameters,
           gpointer data) noexcept { Pending::of(data).gotResponse(parameters); },
        Pending::given(shared_from_this()), Pending::release);
}

void PortalRequest::gotResponse(GVariant *parameters) {
    if (hasEnded()) {
        return;
    }
    if (g_variant_is_of_type(parameters, G_VARIANT_TYPE("(ua{sv})")) == FALSE) {
        fail(openPanelError::badAnswer, g_variant_get_type_string(parameters));
        return;
    }
    PortalAnswer answer;
    GVariant *raw = nullptr;
    g_variant_get(parameters, "(u@a{sv})", &answer.response, &raw);
    const GVariantPointer results(raw);
    const GVariantPointer uris(
        g_variant_lookup_value(results.get(), "uris", G_VARIANT_TYPE_STRING_ARRAY));
    for (gsize at = 0; uris != nullptr && at < g_variant_n_children(uris.get()); ++at) {
        const GVariantPointer uri(g_variant_get_child_value(uris.get(), at));
        answer.uris.emplace_back(g_variant_get_string(uri.get(), nullptr));
    }
    if (answer.response == 0 && answer.uris.empty()) {
        fail(openPanelError::badAnswer, "no folder");
        return;
    }
    finish(answer);
}

void PortalRequest::stopListening(guint &subscription) {
    if (subscription != 0) {
        g_dbus_connection_signal_unsubscribe(connection_.get(), std::exchange(subscription, 0));
    }
}

void PortalRequest::fail(std::int64_t code, const std::string &text) {
    finish({.error = portalError(code, text), .response = 0, .uris = {}});
}

void PortalRequest::fail(const GError &error, std::int64_t otherwise) {
    fail(portalErrorCode(error, otherwise), error.message);
}

void PortalRequest::finish(const PortalAnswer &answer) {
    if (hasEnded()) {
        return;
    }
    // What stops below may hold the last reference to this request.
    const auto self = shared_from_this();
    const Handler handler = std::exchange(handler_, nullptr);
    g_cancellable_cancel(cancellable_.get());
    if (connection_ != nullptr) {
        stopListening(ownerSubscription_);
        stopListening(responseSubscription_);
        if (closedSignal_ != 0) {
            g_signal_handler_disconnect(connection_.get(), std::exchange(closedSignal_, 0));
        }
        g_dbus_connection_close(connection_.get(), nullptr, nullptr, nullptr);
    }
    try {
        handler(answer);
    } catch (const std::exception &error) {
        logLine(std::string("A folder prompt's handler failed: ") + error.what());
    } catch (...) {
        logLine("A folder prompt's handler failed");
    }
}

// NOLINTEND(bugprone-exception-escape)

} // namespace pelluvia::storage
