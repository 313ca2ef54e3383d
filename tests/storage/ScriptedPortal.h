// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/storage/internal/GLibPointers.h>

#include <cstdint>
#include <functional>
#include <gio/gio.h>
#include <optional>
#include <string>
#include <vector>

namespace pelluvia::testing {

/// How an `OpenFile` call came.
struct OpenFileCall {
    std::string sender;
    std::string parentWindow;
    std::string title;
    storage::GVariantPointer options;
    std::string requestPath; ///< where the portal's answer is expected

    /// An option; null when it was not given as that type.
    [[nodiscard]] storage::GVariantPointer option(const char *name, const char *type) const {
        return storage::GVariantPointer(
            g_variant_lookup_value(options.get(), name, G_VARIANT_TYPE(type))); // NOLINT
    }
};

/// A desktop portal that does what a test says: it owns the portal's name on a bus, and answers on
/// the main loop of the test.
class ScriptedPortal {
  public:
    /// What becomes of a call of `OpenFile`. It must answer the invocation, here or later.
    using Script = std::function<void(ScriptedPortal &portal, GDBusMethodInvocation *invocation)>;

    /// Version 0: a file chooser that does not tell its version. Nothing: no file chooser.
    explicit ScriptedPortal(const std::string &busAddress,
                            std::optional<std::uint32_t> version = 4);
    ScriptedPortal(const ScriptedPortal &) = delete;
    ScriptedPortal &operator=(const ScriptedPortal &) = delete;
    ~ScriptedPortal();

    Script onOpenFile = [](ScriptedPortal &portal, GDBusMethodInvocation *invocation) {
        portal.giveHandle(invocation);
    };
    /// Called before the version is told.
    std::function<void()> onVersion;
    std::vector<OpenFileCall> calls;

    /// Answers the call with the request that the caller expects, or another one.
    void giveHandle(GDBusMethodInvocation *invocation, const std::string &path = {}) const;
    /// Sends a response for the last call's request; `parameters` is given away.
    void send(GVariant *parameters, const std::string &path = {}) const;
    /// The same of the form that portals use.
    void respond(std::uint32_t response, const std::vector<std::string> &uris) const;
    /// Leaves the bus as a process does that dies.
    void die();

  private:
    void registerFileChooser();
    static void called(GDBusConnection *connection, const gchar *sender, const gchar *path,
                       const gchar *interface, const gchar *method, GVariant *parameters,
                       GDBusMethodInvocation *invocation, gpointer self);
    static GVariant *asked(GDBusConnection *connection, const gchar *sender, const gchar *path,
                           const gchar *interface, const gchar *property, GError **error,
                           gpointer self);

    storage::GObjectPointer<GDBusConnection> connection_;
    std::uint32_t version_ = 0;
};

} // namespace pelluvia::testing
