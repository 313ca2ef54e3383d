// SPDX-License-Identifier: MIT

#include <tests/storage/FalseBus.h>
#include <tests/storage/PanelTest.h>

#include <Pelluvia/storage/internal/PortalErrors.h>

#include <gmock/gmock.h>

namespace pelluvia {
namespace {

class PortalOfATest : public testing::PanelTest {};

void setSessionBus(const std::string &address) {
    ::setenv("DBUS_SESSION_BUS_ADDRESS", address.c_str(), 1); // NOLINT(concurrency-mt-unsafe)
}

TEST_F(PortalOfATest, WithoutASessionBusThePanelEnds) {
    ::unsetenv("DBUS_SESSION_BUS_ADDRESS");                // NOLINT(concurrency-mt-unsafe)
    ::setenv("XDG_RUNTIME_DIR", folder.path().c_str(), 1); // NOLINT(concurrency-mt-unsafe)
    show();
    expectError(openPanelError::noSessionBus, "There is no session bus");
    responses.clear();
    ::unsetenv("XDG_RUNTIME_DIR"); // NOLINT(concurrency-mt-unsafe)
    show();
    expectError(openPanelError::noSessionBus, "There is no session bus");
}

TEST_F(PortalOfATest, ASessionBusThatCannotBeReachedEndsThePanel) {
    for (const std::string &address :
         {"unix:path=" + folder.file("nobody"), std::string("nonsense"), std::string("unix:")}) {
        SCOPED_TRACE(address);
        setSessionBus(address);
        show();
        expectError(openPanelError::noSessionBus, "There is no session bus: ");
        responses.clear();
    }
}

TEST_F(PortalOfATest, TheBusInTheRuntimeFolderIsFound) {
    const std::string path = bus->address();
    const std::size_t start = path.find("path=") + 5;
    std::filesystem::create_symlink(path.substr(start, path.find(',') - start), folder.file("bus"));
    ::unsetenv("DBUS_SESSION_BUS_ADDRESS");                // NOLINT(concurrency-mt-unsafe)
    ::setenv("XDG_RUNTIME_DIR", folder.path().c_str(), 1); // NOLINT(concurrency-mt-unsafe)
    startPortal();
    show();
    EXPECT_TRUE(wasCalled());
}

TEST_F(PortalOfATest, ThatIsNotThereEndsThePanel) {
    show(); // the test's bus can start nothing
    expectError(openPanelError::noPortal, "There is no desktop portal");
}

TEST_F(PortalOfATest, ThatIsTooOldForFoldersEndsThePanel) {
    for (const std::uint32_t version : {1U, 2U}) {
        startPortal(version);
        show();
        expectError(openPanelError::portalTooOld,
                    "too old to ask for a folder: version " + std::to_string(version));
        EXPECT_TRUE(portal->calls.empty());
        responses.clear();
        portal.reset();
    }
    startPortal(3);
    show();
    EXPECT_TRUE(wasCalled());
}

TEST_F(PortalOfATest, ThatDoesNotTellItsVersionIsTooOld) {
    startPortal(0);
    show();
    expectError(openPanelError::portalTooOld, "too old");
}

TEST_F(PortalOfATest, WithoutAFileChooserIsTooOld) {
    startPortal(std::nullopt);
    show();
    expectError(openPanelError::portalTooOld, "too old");
}

TEST_F(PortalOfATest, ThatRefusesEndsThePanelWithItsReason) {
    startPortal().onOpenFile = [](testing::ScriptedPortal & /*self*/, GDBusMethodInvocation *call) {
        g_dbus_method_invocation_return_dbus_error(call, "org.freedesktop.portal.Error.NotAllowed",
                                                   "not on Sundays");
    };
    show();
    expectError(openPanelError::refused, "not on Sundays");
    portal->respond(0, {"file:///tmp"}); // too late
    testing::runLoopDry();
    EXPECT_EQ(responses.size(), 1U);
}

TEST_F(PortalOfATest, ThatDiesWithTheDialogOpenEndsThePanel) {
    startPortal();
    show();
    ASSERT_TRUE(wasCalled());
    portal->die();
    expectError(openPanelError::portalGone, "went away");
}

TEST_F(PortalOfATest, ThatDiesWhileItIsCalledEndsThePanel) {
    startPortal().onOpenFile = [](testing::ScriptedPortal &self, GDBusMethodInvocation *call) {
        self.die();
        g_object_unref(call);
    };
    show();
    expectError(openPanelError::portalGone, "went away");
}

TEST_F(PortalOfATest, ThatDiesWhenAskedForItsVersionEndsThePanel) {
    auto &self = startPortal();
    self.onVersion = [&self] { self.die(); };
    show();
    expectError(openPanelError::portalGone, "went away");
}

TEST_F(PortalOfATest, ThatIsReplacedWithTheDialogOpenEndsThePanel) {
    startPortal();
    show();
    ASSERT_TRUE(wasCalled());
    portal->die();
    const testing::ScriptedPortal next(bus->address());
    expectError(openPanelError::portalGone, "went away");
}

TEST_F(PortalOfATest, ABusThatEndsWithTheDialogOpenEndsThePanel) {
    startPortal();
    show();
    ASSERT_TRUE(wasCalled());
    bus->stop();
    expectError(openPanelError::portalGone, "went away");
}

TEST_F(PortalOfATest, ABusThatNamesNoOwnerOfThePortalEndsThePanel) {
    for (const char *answer :
         {"('',)", "('no name',)", "('org.freedesktop.portal.Desktop',)", "(uint32 7,)", "()"}) {
        SCOPED_TRACE(answer);
        const testing::FalseBus other(answer);
        setSessionBus(other.address());
        panel = OpenPanel::openPanel();
        show();
        expectError(openPanelError::badAnswer, "cannot be understood");
        responses.clear();
    }
}

TEST(PortalErrors, TellTheKindsOfFailureApart) {
    const auto codeOf = [](GQuark domain, int code) {
        const storage::GErrorPointer error(g_error_new_literal(domain, code, ""));
        return storage::portalErrorCode(*error, openPanelError::refused);
    };
    EXPECT_EQ(codeOf(G_DBUS_ERROR, G_DBUS_ERROR_SERVICE_UNKNOWN), openPanelError::noPortal);
    EXPECT_EQ(codeOf(G_DBUS_ERROR, G_DBUS_ERROR_SPAWN_EXEC_FAILED), openPanelError::noPortal);
    EXPECT_EQ(codeOf(G_DBUS_ERROR, G_DBUS_ERROR_NO_REPLY), openPanelError::portalGone);
    EXPECT_EQ(codeOf(G_DBUS_ERROR, G_DBUS_ERROR_ACCESS_DENIED), openPanelError::refused);
    EXPECT_EQ(codeOf(G_IO_ERROR, G_IO_ERROR_TIMED_OUT), openPanelError::portalGone);
    EXPECT_EQ(codeOf(G_IO_ERROR, G_IO_ERROR_CLOSED), openPanelError::portalGone);
    EXPECT_EQ(codeOf(G_IO_ERROR, G_IO_ERROR_DBUS_ERROR), openPanelError::refused);
    EXPECT_EQ(codeOf(G_FILE_ERROR, G_FILE_ERROR_FAILED), openPanelError::refused);
}

TEST(PortalErrors, CodesNeverChange) {
    EXPECT_EQ(openPanelErrorDomain, "com.Quorvel.Pelluvia.OpenPanel");
    EXPECT_EQ(openPanelError::noSessionBus, 1);
    EXPECT_EQ(openPanelError::noPortal, 2);
    EXPECT_EQ(openPanelError::portalTooOld, 3);
    EXPECT_EQ(openPanelError::portalGone, 4);
    EXPECT_EQ(openPanelError::badAnswer, 5);
    EXPECT_EQ(openPanelError::refused, 6);
}

} // namespace
} // namespace pelluvia
