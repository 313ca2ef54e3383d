// SPDX-License-Identifier: MIT

#include <Pelluvia/storage/OpenPanel.h>

#include <tests/storage/PanelTest.h>

#include <gmock/gmock.h>
#include <stdexcept>
#include <thread>

namespace pelluvia {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class OpenPanelOfATest : public testing::PanelTest {};

/// A handle is given, and an answer sent before it.
void answerFirst(testing::ScriptedPortal &portal, GDBusMethodInvocation *invocation) {
    portal.respond(0, {"file:///tmp"});
    portal.giveHandle(invocation);
}

TEST_F(OpenPanelOfATest, AsksForOneFolder) {
    startPortal();
    panel->setDirectoryURL(URL::fileURLWithPath("/home/me/\xFFGPS/"));
    show("x11:1a0002b");
    ASSERT_TRUE(wasCalled());
    const testing::OpenFileCall &call = portal->calls.front();
    EXPECT_EQ(call.parentWindow, "x11:1a0002b");
    EXPECT_EQ(call.title, "");
    EXPECT_EQ(g_variant_n_children(call.options.get()), 4U);
    EXPECT_TRUE(g_variant_get_boolean(call.option("directory", "b").get()));
    EXPECT_TRUE(g_variant_get_boolean(call.option("modal", "b").get()));
    EXPECT_NE(call.option("handle_token", "s"), nullptr);
    EXPECT_STREQ(g_variant_get_bytestring(call.option("current_folder", "ay").get()),
                 "/home/me/\xFFGPS");
    portal->respond(0, {"file:///home/me/GPS%20tracks"});
    EXPECT_EQ(response(), modalResponse::ok);
    EXPECT_EQ(panel->url()->path(), "/home/me/GPS tracks");
    EXPECT_EQ(panel->error(), nullptr);
}

TEST_F(OpenPanelOfATest, ShowsARelativeFolderFromTheWorkingDirectory) {
    startPortal();
    panel->setDirectoryURL(URL::fileURLWithPath("GPS"));
    show();
    ASSERT_TRUE(wasCalled());
    const auto shown = portal->calls.front().option("current_folder", "ay");
    EXPECT_EQ(g_variant_get_bytestring(shown.get()),
              (std::filesystem::current_path() / "GPS").string());
    EXPECT_EQ(portal->calls.front().parentWindow, "");
}

TEST_F(OpenPanelOfATest, OddFoldersAndWindowsAreLeftOut) {
    for (const std::string &path : {std::string(), std::string("/a\0b", 4)}) {
        startPortal();
        panel = OpenPanel::openPanel();
        panel->setDirectoryURL(URL::fileURLWithPath(path));
        show("x11:\xFF");
        ASSERT_TRUE(wasCalled());
        EXPECT_EQ(portal->calls.front().option("current_folder", "ay"), nullptr);
        EXPECT_EQ(portal->calls.front().parentWindow, "");
        portal->die();
        ASSERT_TRUE(testing::runLoopUntil([this] { return !responses.empty(); }));
        responses.clear();
    }
}

TEST_F(OpenPanelOfATest, SendsAFolderOfManyBytes) {
    startPortal();
    const std::string path = "/" + std::string(100'000, 'x');
    panel->setDirectoryURL(URL::fileURLWithPath(path));
    show();
    ASSERT_TRUE(wasCalled());
    EXPECT_EQ(g_variant_get_bytestring(portal->calls.front().option("current_folder", "ay").get()),
              path);
}

TEST_F(OpenPanelOfATest, EveryAnswerBut0ChoosesNothing) {
    for (const std::uint32_t answer : {1U, 2U, 3U, 0xFFFFFFFFU}) {
        startPortal();
        panel = OpenPanel::openPanel();
        show();
        ASSERT_TRUE(wasCalled());
        portal->respond(answer, {"file:///tmp"});
        EXPECT_EQ(response(), modalResponse::cancel);
        EXPECT_FALSE(panel->url());
        EXPECT_EQ(panel->error(), nullptr);
        responses.clear();
        portal.reset();
    }
}

TEST_F(OpenPanelOfATest, ReturnsAtOnceAndEndsOnTheMainLoop) {
    startPortal().onOpenFile = answerFirst;
    show();
    EXPECT_THAT(responses, IsEmpty());
    EXPECT_EQ(response(), modalResponse::ok);
}

TEST_F(OpenPanelOfATest, AnAnswerBeforeTheCallHasReturnedIsNotLost) {
    startPortal().onOpenFile = answerFirst;
    show();
    EXPECT_EQ(response(), modalResponse::ok);
    EXPECT_EQ(panel->url()->path(), "/tmp");
}

TEST_F(OpenPanelOfATest, APortalThatNamesTheRequestItselfIsHeard) {
    const std::string path = "/org/freedesktop/portal/desktop/request/old";
    startPortal().onOpenFile = [&](testing::ScriptedPortal &self, GDBusMethodInvocation *call) {
        self.giveHandle(call, path);
    };
    show();
    ASSERT_TRUE(wasCalled());
    // Once the client has the handle it listens there; until then answers are sent again.
    ASSERT_TRUE(testing::runLoopUntil([&] {
        if (responses.empty()) {
            portal->send(g_variant_new_parsed("(uint32 0, {'uris': <['file:///tmp']>})"), path);
        }
        return !responses.empty();
    }));
    EXPECT_EQ(response(), modalResponse::ok);
}

TEST_F(OpenPanelOfATest, ALateAnswerIsHeard) {
    startPortal();
    show();
    ASSERT_TRUE(wasCalled());
    int rounds = 0;
    ASSERT_TRUE(testing::runLoopUntil([&] { return ++rounds > 25; }));
    EXPECT_THAT(responses, IsEmpty());
    portal->respond(0, {"file:///tmp"});
    EXPECT_EQ(response(), modalResponse::ok);
}

TEST_F(OpenPanelOfATest, ADoubledAnswerCountsOnce) {
    startPortal();
    show();
    ASSERT_TRUE(wasCalled());
    portal->respond(0, {"file:///first"});
    portal->respond(0, {"file:///second"});
    portal->respond(1, {});
    EXPECT_EQ(response(), modalResponse::ok);
    portal->respond(0, {"file:///third"});
    testing::runLoopDry();
    EXPECT_EQ(panel->url()->path(), "/first");
    EXPECT_EQ(responses.size(), 1U);
}

TEST_F(OpenPanelOfATest, OfSeveralFoldersTheFirstIsChosen) {
    startPortal();
    show();
    ASSERT_TRUE(wasCalled());
    portal->respond(0, {"file:///first", "file:///second"});
    EXPECT_EQ(response(), modalResponse::ok);
    EXPECT_EQ(panel->url()->path(), "/first");
}

TEST_F(OpenPanelOfATest, MalformedAnswersAreErrors) {
    for (const char *answer :
         {"(uint32 0,)", "('text',)", "(uint32 0, 'text')", "(int32 0, @a{sv} {})",
          "(uint32 0, @a{sv} {})", "(uint32 0, {'uris': <'file:///tmp'>})",
          "(uint32 0, {'uris': <@as []>})", "(uint32 0, {'uris': <['http://example.org/']>})",
          "(uint32 0, {'uris': <['file://elsewhere/tmp']>})", "(uint32 0, {'uris': <['/tmp']>})",
          "(uint32 0, {'uris': <['']>})", "(uint32 0, {'uris': <['file:///a%00b']>})",
          "(uint32 0, {'uri': <['file:///tmp']>})", "(uint32 0, @a{sv} {}, 'more')"}) {
        SCOPED_TRACE(answer);
        startPortal();
        panel = OpenPanel::openPanel();
        show();
        ASSERT_TRUE(wasCalled());
        portal->send(g_variant_new_parsed(answer));
        expectError(openPanelError::badAnswer, "cannot be understood");
        responses.clear();
        portal.reset();
    }
}

TEST_F(OpenPanelOfATest, OnlyThePortalIsHeard) {
    startPortal();
    show();
    ASSERT_TRUE(wasCalled());
    const storage::GObjectPointer<GDBusConnection> other(g_dbus_connection_new_for_address_sync(
        bus->address().c_str(),
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr, nullptr, nullptr));
    const testing::OpenFileCall &call = portal->calls.front();
    g_dbus_connection_emit_signal(
        other.get(), call.sender.c_str(), call.requestPath.c_str(),
        "org.freedesktop.portal.Request", "Response",
        g_variant_new_parsed("(uint32 0, {'uris': <['file:///forged']>})"), nullptr);
    g_dbus_connection_flush_sync(other.get(), nullptr, nullptr);
    portal->respond(0, {"file:///chosen"});
    EXPECT_EQ(response(), modalResponse::ok);
    EXPECT_EQ(panel->url()->path(), "/chosen");
}

TEST_F(OpenPanelOfATest, WhatTheHandlerThrowsIsLogged) {
    startPortal().onOpenFile = answerFirst;
    panel->beginSheetModalForWindow(
        "", [](std::int64_t /*response*/) { throw std::runtime_error("too bad"); });
    ASSERT_TRUE(testing::runLoopUntil([this] { return !log.lines.empty(); }));
    EXPECT_THAT(log.lines, ElementsAre("A folder prompt's handler failed: too bad"));
}

TEST_F(OpenPanelOfATest, WithoutAHandlerEndsToo) {
    startPortal().onOpenFile = answerFirst;
    panel->beginSheetModalForWindow("", nullptr);
    EXPECT_TRUE(testing::runLoopUntil([this] { return panel->url().has_value(); }));
}

TEST_F(OpenPanelOfATest, IsKeptWithItsHandlerUntilItHasEndedAndNoLonger) {
    startPortal();
    auto held = std::make_shared<int>(1);
    const std::weak_ptr<int> handlers = held;
    const std::weak_ptr<OpenPanel> panels = panel;
    panel->beginSheetModalForWindow(
        "", [this, held](std::int64_t response) { responses.push_back(response); });
    held.reset();
    panel.reset();
    ASSERT_TRUE(wasCalled());
    EXPECT_FALSE(handlers.expired());
    EXPECT_FALSE(panels.expired());
    portal->respond(1, {});
    EXPECT_EQ(response(), modalResponse::cancel);
    EXPECT_TRUE(handlers.expired());
    EXPECT_TRUE(panels.expired());
}

TEST_F(OpenPanelOfATest, EndsOnTheMainContextWhoeverShowsIt) {
    startPortal().onOpenFile = answerFirst;
    std::thread::id endedOn;
    std::thread([&] {
        const auto context = g_main_context_new();
        g_main_context_push_thread_default(context);
        panel->beginSheetModalForWindow("", [&](std::int64_t response) {
            endedOn = std::this_thread::get_id();
            responses.push_back(response);
        });
        g_main_context_pop_thread_default(context);
        g_main_context_unref(context);
    }).join();
    EXPECT_EQ(response(), modalResponse::ok);
    EXPECT_EQ(endedOn, std::this_thread::get_id());
}

TEST_F(OpenPanelOfATest, SeveralAtATimeEndEachWithItsOwnAnswer) {
    startPortal();
    const auto other = OpenPanel::openPanel();
    show("x11:1");
    ASSERT_TRUE(wasCalled());
    other->beginSheetModalForWindow("x11:2", [](std::int64_t /*response*/) {});
    ASSERT_TRUE(testing::runLoopUntil([this] { return portal->calls.size() == 2; }));
    portal->respond(0, {"file:///two"});
    ASSERT_TRUE(testing::runLoopUntil([&] { return other->url().has_value(); }));
    EXPECT_EQ(other->url()->path(), "/two");
    EXPECT_THAT(responses, IsEmpty());
    portal->calls.pop_back();
    portal->respond(0, {"file:///one"});
    EXPECT_EQ(response(), modalResponse::ok);
    EXPECT_EQ(panel->url()->path(), "/one");
}

} // namespace
} // namespace pelluvia
