// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/storage/internal/GLibPointers.h>

#include <gio/gio.h>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <tests/support/TemporaryFolder.h>
#include <utility>

namespace pelluvia::testing {

/// What a client takes for a session bus with a portal on it, up to the question who owns the
/// portal's name, to which the answer is what the test wants.
class FalseBus {
  public:
    /// `owner` is a GVariant text, the whole answer.
    explicit FalseBus(std::string owner) : owner_(std::move(owner)) {
        const storage::GMemory<gchar> guid(g_dbus_generate_guid());
        server_.reset(g_dbus_server_new_sync(("unix:dir=" + folder_.path().string()).c_str(),
                                             G_DBUS_SERVER_FLAGS_NONE, guid.get(), nullptr, nullptr,
                                             nullptr));
        EXPECT_NE(server_, nullptr);
        g_signal_connect(server_.get(), "new-connection", G_CALLBACK(connected), this);
        g_dbus_server_start(server_.get());
    }
    FalseBus(const FalseBus &) = delete;
    FalseBus &operator=(const FalseBus &) = delete;
    ~FalseBus() {
        if (connection_ != nullptr) {
            g_dbus_connection_close_sync(connection_.get(), nullptr, nullptr);
        }
        g_dbus_server_stop(server_.get());
    }

    [[nodiscard]] std::string address() const {
        return g_dbus_server_get_client_address(server_.get());
    }

  private:
    static gboolean connected(GDBusServer * /*server*/, GDBusConnection *connection,
                              FalseBus *self) {
        self->connection_.reset(G_DBUS_CONNECTION(g_object_ref(connection))); // NOLINT
        g_dbus_connection_add_filter(
            connection, answer, new std::string(self->owner_), // NOLINT
            [](gpointer text) { delete static_cast<std::string *>(text); });
        return TRUE;
    }

    /// Called on a thread of GIO's.
    static GDBusMessage *answer(GDBusConnection *connection, GDBusMessage *message,
                                gboolean isIncoming, gpointer owner) {
        if (isIncoming == FALSE ||
            g_dbus_message_get_message_type(message) != G_DBUS_MESSAGE_TYPE_METHOD_CALL) {
            return message;
        }
        const std::string_view method = g_dbus_message_get_member(message);
        const std::string text = method == "Hello" ? "(':1.1',)"
                                 : method == "Get" ? "(<uint32 4>,)"
                                 : method == "GetNameOwner"
                                     ? *static_cast<const std::string *>(owner)
                                     : "()";
        const storage::GObjectPointer<GDBusMessage> reply(g_dbus_message_new_method_reply(message));
        g_dbus_message_set_body(reply.get(), g_variant_new_parsed(text.c_str()));
        g_dbus_connection_send_message(connection, reply.get(), G_DBUS_SEND_MESSAGE_FLAGS_NONE,
                                       nullptr, nullptr);
        g_object_unref(message);
        return nullptr;
    }

    TemporaryFolder folder_;
    std::string owner_;
    storage::GObjectPointer<GDBusServer> server_;
    storage::GObjectPointer<GDBusConnection> connection_;
};

} // namespace pelluvia::testing
