// SPDX-License-Identifier: MIT

#pragma once

#include <tests/storage/OwnDefaults.h>
#include <tests/storage/PrivateBus.h>
#include <tests/storage/ScriptedPortal.h>

#include <Pelluvia/storage/OpenPanel.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace pelluvia::testing {

/// A test with a bus of its own and a portal on it that does as told.
class PanelTest : public OwnDefaults {
  protected:
    void SetUp() override {
        if (!PrivateBus::isPossible()) {
            GTEST_SKIP() << "dbus-daemon is not installed";
        }
        bus.emplace();
    }
    void TearDown() override {
        // A prompt that is still open would end in a later test.
        portal.reset();
        if (bus) {
            bus->stop();
        }
        EXPECT_TRUE(runLoopUntil([this] { return open.use_count() == 1; }));
        runLoopDry();
    }

    ScriptedPortal &startPortal(std::optional<std::uint32_t> version = 4) {
        portal = std::make_unique<ScriptedPortal>(bus->address(), version);
        return *portal;
    }

    /// Shows a panel; how it ends is added to `responses`.
    void show(const std::string &window = {}) {
        panel->beginSheetModalForWindow(
            window, [this, open = open](std::int64_t response) { responses.push_back(response); });
    }
    /// Runs the loop until the panel has ended, and until nothing more comes.
    std::int64_t response() {
        EXPECT_TRUE(runLoopUntil([this] { return !responses.empty(); }));
        runLoopDry();
        EXPECT_EQ(responses.size(), 1U);
        return responses.empty() ? -1 : responses.front();
    }
    bool wasCalled() {
        return runLoopUntil([this] { return !portal->calls.empty(); });
    }
    /// The panel ends with an error of this code.
    void expectError(std::int64_t code, const std::string &text) {
        EXPECT_EQ(response(), modalResponse::abort);
        ASSERT_NE(panel->error(), nullptr);
        EXPECT_EQ(panel->error()->domain(), openPanelErrorDomain);
        EXPECT_EQ(panel->error()->code(), code);
        EXPECT_NE(panel->error()->localizedDescription().find(text), std::string::npos)
            << panel->error()->localizedDescription();
        EXPECT_FALSE(panel->url());
    }

    std::optional<PrivateBus> bus;
    std::unique_ptr<ScriptedPortal> portal;
    std::shared_ptr<OpenPanel> panel = OpenPanel::openPanel();
    std::vector<std::int64_t> responses;
    /// Held by the handlers of prompts that have not ended.
    std::shared_ptr<int> open = std::make_shared<int>();
};

} // namespace pelluvia::testing
