// SPDX-License-Identifier: MIT

#pragma once

#include <tests/storage/ChildProcess.h>

#include <tests/support/TemporaryFolder.h>

#include <chrono>
#include <cstdlib>
#include <functional>
#include <gio/gio.h>
#include <optional>
#include <string>
#include <vector>

namespace pelluvia::testing {

/// Runs the main loop until something has become true. False when that takes so long that it never
/// will.
[[nodiscard]] inline bool runLoopUntil(const std::function<bool()> &isTrue,
                                       std::chrono::seconds patience = std::chrono::seconds(60)) {
    // Wakes the loop up now and then, for what is not an event of the loop.
    const guint ticks = g_timeout_add(
        20, [](gpointer /*data*/) -> gboolean { return G_SOURCE_CONTINUE; }, nullptr);
    const auto end = std::chrono::steady_clock::now() + patience;
    bool result = isTrue();
    while (!result && std::chrono::steady_clock::now() < end) {
        g_main_context_iteration(nullptr, TRUE);
        result = isTrue();
    }
    g_source_remove(ticks);
    return result;
}

/// Runs what the main loop has to do, and that which follows from it.
inline void runLoopDry() {
    while (g_main_context_iteration(nullptr, FALSE) != FALSE) {
    }
}

/// A session bus that only this process knows, and which the process takes for its own. Services
/// can be started on it when they are installed and asked for.
class PrivateBus {
  public:
    explicit PrivateBus(bool canStartServices = false) {
        const std::string config = folder_.write("bus.conf", R"(<busconfig>
            <type>session</type>
            <listen>unix:dir=)" + folder_.path().string() + R"(</listen>
            <auth>EXTERNAL</auth>)" + (canStartServices ? "<standard_session_servicedirs/>" : "") +
                                                                 R"(
            <policy context="default">
              <allow send_destination="*" eavesdrop="true"/><allow eavesdrop="true"/><allow own="*"/>
            </policy></busconfig>)");
        daemon_.emplace(std::vector<std::string>{"dbus-daemon", "--nofork", "--print-address",
                                                 "--config-file=" + config});
        address_ = daemon_->readLine();
        EXPECT_NE(address_, "");
        ::setenv("DBUS_SESSION_BUS_ADDRESS", address_.c_str(), 1); // NOLINT(concurrency-mt-unsafe)
    }

    /// Whether there is a program to run it.
    [[nodiscard]] static bool isPossible() { return hasProgram("dbus-daemon"); }

    [[nodiscard]] const std::string &address() const noexcept { return address_; }
    /// The bus ends, and all connections to it break.
    void stop() { daemon_->stop(); }

  private:
    TemporaryFolder folder_;
    std::optional<ChildProcess> daemon_;
    std::string address_;
};

} // namespace pelluvia::testing
