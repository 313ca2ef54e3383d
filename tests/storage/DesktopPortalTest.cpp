// SPDX-License-Identifier: MIT

#include <tests/storage/OwnDefaults.h>
#include <tests/storage/PrivateBus.h>
#include <tests/storage/Probe.h>

#include <Pelluvia/storage/GPSStorageAuthorization.h>
#include <Pelluvia/storage/OpenPanel.h>
#include <Pelluvia/values/CocoaErrors.h>

#include <array>
#include <csignal>
#include <filesystem>
#include <gmock/gmock.h>
#include <optional>
#include <string>
#include <vector>

/// \file
/// The prompt of a real desktop: an X server without a screen, a window manager, a session bus, and
/// the portal with its GTK dialog. Keys are pressed as a user presses them.

namespace pelluvia {
namespace {

void set(const char *name, const std::string &value) {
    ::setenv(name, value.c_str(), 1); // NOLINT(concurrency-mt-unsafe)
}

/// Runs xdotool to its end, without minding how it ends. False when it finds no window.
bool xdotool(const std::vector<std::string> &arguments) {
    std::vector<const gchar *> pointers = {"timeout", "20", "xdotool"};
    for (const std::string &each : arguments) {
        pointers.push_back(each.c_str());
    }
    pointers.push_back(nullptr);
    const storage::GObjectPointer<GSubprocess> process(
        g_subprocess_newv(pointers.data(),
                          static_cast<GSubprocessFlags>(G_SUBPROCESS_FLAGS_STDOUT_SILENCE |
                                                        G_SUBPROCESS_FLAGS_STDERR_SILENCE),
                          nullptr));
    return process != nullptr && g_subprocess_wait_check(process.get(), nullptr, nullptr) != FALSE;
}

class DesktopPortal : public testing::OwnDefaults {
  protected:
    void SetUp() override {
        for (const char *name : {"Xvfb", "matchbox-window-manager", "xdotool", "dbus-daemon"}) {
            if (!testing::hasProgram(name)) {
                GTEST_SKIP() << name << " is not installed";
            }
        }
        for (const char *service : {"xdg-desktop-portal", "xdg-desktop-portal-gtk"}) {
            if (!std::filesystem::exists(std::string("/usr/libexec/") + service)) {
                GTEST_SKIP() << service << " is not installed";
            }
        }
        startDesktop();
    }
    void TearDown() override {
        if (bus) {
            bus->stop();
        }
        EXPECT_TRUE(testing::runLoopUntil([this] { return open.use_count() == 1; }));
        testing::runLoopDry();
    }

    void startDesktop() {
        for (const auto &name : {"home", "run", "gtk-3.0"}) {
            std::filesystem::create_directory(folder.file(name));
        }
        std::filesystem::permissions(folder.file("run"), std::filesystem::perms(0700));
        std::filesystem::create_directory(chosen);
        // The first of the dialog's bookmarks, which Alt+1 opens.
        testing::writeFile(folder.file("gtk-3.0/bookmarks"),
                           "file://" + folder.file("Chosen%20folder") + " Chosen\n");
        set("HOME", folder.file("home"));
        set("XDG_DATA_HOME", folder.file("home"));
        set("XDG_CACHE_HOME", folder.file("home"));
        set("XDG_RUNTIME_DIR", folder.file("run"));
        set("XDG_CURRENT_DESKTOP", "GNOME");
        set("GSETTINGS_BACKEND", "memory"); // the dialog begins with recent folders, of which
        set("NO_AT_BRIDGE", "1");           // there are none, and nothing can be selected
        set("GDK_BACKEND", "x11");
        ::unsetenv("WAYLAND_DISPLAY"); // NOLINT(concurrency-mt-unsafe)
        ::unsetenv("LD_PRELOAD");      // NOLINT(concurrency-mt-unsafe)
        server.emplace(std::vector<std::string>{"Xvfb", "-displayfd", "1", "-screen", "0",
                                                "1000x700x24", "-nolisten", "tcp", "-noreset"});
        const std::string display = server->readLine(); // says it when it takes connections
        ASSERT_NE(display, "");
        set("DISPLAY", ":" + display);
        windowManager.emplace(
            std::vector<std::string>{"matchbox-window-manager", "-use_titlebar", "yes"});
        bus.emplace(true);
    }

    void begin() {
        GPSStorageAuthorization::authorizePath(
            requested, "",
            [this, open = open](const ErrorPtr &error) { outcomes.push_back(error); });
    }
    /// The dialog is there, and it is the window that gets the keys.
    bool dialogIsShown() const {
        return outcomes.empty() && xdotool({"search", "--onlyvisible", "--class", dialogClass}) &&
               xdotool({"getactivewindow"});
    }
    bool waitForDialog() {
        return testing::runLoopUntil([this] { return dialogIsShown(); }, std::chrono::seconds(120));
    }
    /// Presses a key again and again until the prompt has ended: what is pressed too early, while
    /// the dialog is still busy, does nothing.
    ErrorPtr pressUntilItEnds(const char *key) {
        const bool hasEnded = testing::runLoopUntil(
            [this, key] {
                if (outcomes.empty() && dialogIsShown()) {
                    xdotool({"key", key});
                }
                return !outcomes.empty();
            },
            std::chrono::seconds(120));
        EXPECT_TRUE(hasEnded);
        testing::runLoopDry();
        EXPECT_EQ(outcomes.size(), 1U);
        return hasEnded ? outcomes.front() : Error::make("test", 0);
    }

    static constexpr const char *dialogClass = "xdg-desktop-portal-gtk";

    std::string requested = folder.file("home/GPS");
    std::string chosen = folder.file("Chosen folder");
    std::vector<ErrorPtr> outcomes;
    std::shared_ptr<int> open = std::make_shared<int>();
    std::optional<testing::ChildProcess> server;
    std::optional<testing::ChildProcess> windowManager;
    std::optional<testing::PrivateBus> bus;
};

TEST_F(DesktopPortal, GrantsTheFolderThatTheUserChooses) {
    begin();
    ASSERT_TRUE(waitForDialog());
    ASSERT_TRUE(xdotool({"key", "alt+1"}));
    const ErrorPtr error = pressUntilItEnds("alt+s"); // "Select"
    ASSERT_EQ(error, nullptr) << error->localizedDescription();
    const auto granted = GPSStorageAuthorization::authorizedBookmarkURLForPath(requested, nullptr);
    ASSERT_TRUE(granted);
    EXPECT_EQ(granted->path(), chosen);
    EXPECT_THAT(testing::readFile(defaultsFile()),
                ::testing::HasSubstr("\nGPSStorageAuthorization:" + requested + "=data:"));
    EXPECT_THAT(log.lines, ::testing::IsEmpty());

    const testing::Outcome later = testing::probe({"resolve", "org.example.Test", requested});
    EXPECT_EQ(later.status, 0);
    EXPECT_EQ(later.output, chosen + "\n");
}

TEST_F(DesktopPortal, KeepsNothingWhenTheUserCancels) {
    begin();
    ASSERT_TRUE(waitForDialog());
    const ErrorPtr error = pressUntilItEnds("Escape");
    ASSERT_NE(error, nullptr);
    EXPECT_EQ(error->domain(), "NSCocoaErrorDomain");
    EXPECT_EQ(error->code(), -128);
    EXPECT_FALSE(std::filesystem::exists(defaultsFile()));
}

/// The process that owns a name on the session bus.
pid_t ownerOf(const testing::PrivateBus &bus, const char *name) {
    const storage::GObjectPointer<GDBusConnection> connection(
        g_dbus_connection_new_for_address_sync(
            bus.address().c_str(),
            static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                              G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
            nullptr, nullptr, nullptr));
    const storage::GVariantPointer answer(g_dbus_connection_call_sync(
        connection.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
        "GetConnectionUnixProcessID", g_variant_new("(s)", name), G_VARIANT_TYPE("(u)"),
        G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr));
    guint32 process = 0;
    if (answer != nullptr) {
        g_variant_get(answer.get(), "(u)", &process);
    }
    return static_cast<pid_t>(process);
}

TEST_F(DesktopPortal, ThatIsKilledWithTheDialogOpenIsAnError) {
    begin();
    ASSERT_TRUE(waitForDialog());
    const pid_t portal = ownerOf(*bus, "org.freedesktop.portal.Desktop");
    ASSERT_GT(portal, 0);
    ASSERT_EQ(::kill(portal, SIGKILL), 0);
    ASSERT_TRUE(testing::runLoopUntil([this] { return !outcomes.empty(); }));
    ASSERT_NE(outcomes.front(), nullptr);
    EXPECT_EQ(outcomes.front()->domain(), openPanelErrorDomain);
    EXPECT_EQ(outcomes.front()->code(), openPanelError::portalGone);
    EXPECT_FALSE(std::filesystem::exists(defaultsFile()));
}

} // namespace
} // namespace pelluvia
