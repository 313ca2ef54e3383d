// SPDX-License-Identifier: MIT

#include <tests/storage/ScriptedPortal.h>

#include <algorithm>
#include <gtest/gtest.h>

namespace pelluvia::testing {

namespace {

constexpr const char *description = R"(
<node>
  <interface name="org.freedesktop.portal.FileChooser">
    <method name="OpenFile">
      <arg type="s" direction="in"/>
      <arg type="s" direction="in"/>
      <arg type="a{sv}" direction="in"/>
      <arg type="o" direction="out"/>
    </method>
    VERSION
  </interface>
</node>)";

std::string interfaceText(bool hasVersion) {
    std::string text = description;
    const std::string mark = "VERSION";
    return text.replace(text.find(mark), mark.size(),
                        hasVersion ? R"(<property name="version" type="u" access="read"/>)" : "");
}

std::string requestPathOf(std::string sender, const std::string &token) {
    sender.erase(0, 1);
    std::replace(sender.begin(), sender.end(), '.', '_');
    return "/org/freedesktop/portal/desktop/request/" + sender + "/" + token;
}

} // namespace

ScriptedPortal::ScriptedPortal(const std::string &busAddress, std::optional<std::uint32_t> version)
    : connection_(g_dbus_connection_new_for_address_sync(
          busAddress.c_str(),
          static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                            G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
          nullptr, nullptr, nullptr)),
      version_(version.value_or(0)) {
    EXPECT_NE(connection_, nullptr);
    if (version) {
        registerFileChooser();
    }
    const storage::GVariantPointer owned(g_dbus_connection_call_sync(
        connection_.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
        "RequestName", g_variant_new("(su)", "org.freedesktop.portal.Desktop", 0U), nullptr,
        G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr));
    EXPECT_NE(owned, nullptr);
}

ScriptedPortal::~ScriptedPortal() {
    die();
}

void ScriptedPortal::registerFileChooser() {
    GDBusNodeInfo *const node =
        g_dbus_node_info_new_for_xml(interfaceText(version_ != 0).c_str(), nullptr);
    static const GDBusInterfaceVTable table = {called, asked, nullptr, {}};
    EXPECT_NE(
        g_dbus_connection_register_object(connection_.get(), "/org/freedesktop/portal/desktop",
                                          node->interfaces[0], &table, this, nullptr, nullptr),
        0U);
    g_dbus_node_info_unref(node);
}

void ScriptedPortal::called(GDBusConnection * /*connection*/, const gchar *sender,
                            const gchar * /*path*/, const gchar * /*interface*/,
                            const gchar * /*method*/, GVariant *parameters,
                            GDBusMethodInvocation *invocation, gpointer self) {
    auto &portal = *static_cast<ScriptedPortal *>(self);
    const gchar *window = nullptr;
    const gchar *title = nullptr;
    GVariant *options = nullptr;
    g_variant_get(parameters, "(&s&s@a{sv})", &window, &title, &options);
    OpenFileCall call{.sender = sender,
                      .parentWindow = window,
                      .title = title,
                      .options = storage::GVariantPointer(options),
                      .requestPath = {}};
    if (const auto token = call.option("handle_token", "s")) {
        call.requestPath = requestPathOf(sender, g_variant_get_string(token.get(), nullptr));
    }
    portal.calls.push_back(std::move(call));
    portal.onOpenFile(portal, invocation);
}

GVariant *ScriptedPortal::asked(GDBusConnection * /*connection*/, const gchar * /*sender*/,
                                const gchar * /*path*/, const gchar * /*interface*/,
                                const gchar * /*property*/, GError ** /*error*/, gpointer self) {
    const auto &portal = *static_cast<ScriptedPortal *>(self);
    if (portal.onVersion) {
        portal.onVersion();
    }
    return g_variant_new_uint32(portal.version_);
}

void ScriptedPortal::giveHandle(GDBusMethodInvocation *invocation, const std::string &path) const {
    g_dbus_method_invocation_return_value(
        invocation,
        g_variant_new("(o)", path.empty() ? calls.back().requestPath.c_str() : path.c_str()));
}

void ScriptedPortal::send(GVariant *parameters, const std::string &path) const {
    const OpenFileCall &call = calls.back();
    g_dbus_connection_emit_signal(connection_.get(), call.sender.c_str(),
                                  path.empty() ? call.requestPath.c_str() : path.c_str(),
                                  "org.freedesktop.portal.Request", "Response", parameters,
                                  nullptr);
}

void ScriptedPortal::respond(std::uint32_t response, const std::vector<std::string> &uris) const {
    GVariantBuilder results;
    g_variant_builder_init(&results, G_VARIANT_TYPE_VARDICT);
    if (!uris.empty()) {
        GVariantBuilder list;
        g_variant_builder_init(&list, G_VARIANT_TYPE_STRING_ARRAY);
        for (const std::string &uri : uris) {
            g_variant_builder_add(&list, "s", uri.c_str());
        }
        g_variant_builder_add(&results, "{sv}", "uris", g_variant_builder_end(&list));
    }
    send(g_variant_new("(ua{sv})", response, &results));
}

void ScriptedPortal::die() {
    g_dbus_connection_close_sync(connection_.get(), nullptr, nullptr);
}

} // namespace pelluvia::testing
