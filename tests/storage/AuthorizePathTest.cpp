// SPDX-License-Identifier: MIT

#include <tests/storage/PanelTest.h>

#include <Pelluvia/storage/GPSStorageAuthorization.h>
#include <Pelluvia/values/CocoaErrors.h>

#include <filesystem>
#include <gmock/gmock.h>

namespace pelluvia {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::StartsWith;

class AuthorizePath : public testing::PanelTest {
  protected:
    AuthorizePath() { std::filesystem::create_directory(chosen); }

    /// Asks, and answers as the user; the outcome.
    ErrorPtr authorize(std::uint32_t answer, const std::vector<std::string> &uris) {
        startPortal();
        begin();
        EXPECT_TRUE(wasCalled());
        portal->respond(answer, uris);
        return outcome();
    }
    void begin() {
        GPSStorageAuthorization::authorizePath(
            requested, "wayland:handle",
            [this, open = open](const ErrorPtr &error) { outcomes.push_back(error); });
    }
    ErrorPtr outcome() {
        EXPECT_TRUE(testing::runLoopUntil([this] { return !outcomes.empty(); }));
        testing::runLoopDry();
        EXPECT_EQ(outcomes.size(), 1U);
        return outcomes.front();
    }
    std::string grantOf(const std::string &path) const {
        const auto url = GPSStorageAuthorization::authorizedBookmarkURLForPath(path, nullptr);
        return url ? url->path() : "nothing";
    }

    std::string requested = "/Users/x/GPS";
    std::string chosen = folder.file("chosen");
    std::vector<ErrorPtr> outcomes;
};

TEST_F(AuthorizePath, KeepsTheChosenFolderUnderThePathThatWasAskedFor) {
    EXPECT_EQ(authorize(0, {"file://" + chosen}), nullptr);
    EXPECT_EQ(grantOf(requested), chosen);
    EXPECT_EQ(grantOf(chosen), "nothing");
    const auto shown = portal->calls.front().option("current_folder", "ay");
    EXPECT_STREQ(g_variant_get_bytestring(shown.get()), "/Users/x/GPS");
    EXPECT_EQ(portal->calls.front().parentWindow, "wayland:handle");
}

TEST_F(AuthorizePath, ReturnsAtOnce) {
    startPortal();
    begin();
    EXPECT_THAT(outcomes, IsEmpty());
    EXPECT_THAT(portal->calls, IsEmpty());
}

TEST_F(AuthorizePath, CancelledKeepsNothing) {
    for (const std::uint32_t answer : {1U, 2U}) {
        const ErrorPtr error = authorize(answer, {"file://" + chosen});
        ASSERT_NE(error, nullptr);
        EXPECT_EQ(error->domain(), "NSCocoaErrorDomain");
        EXPECT_EQ(error->code(), -128);
        EXPECT_THAT(error->userInfo(), IsEmpty());
        EXPECT_FALSE(std::filesystem::exists(defaultsFile()));
        EXPECT_THAT(log.lines, IsEmpty());
        outcomes.clear();
        portal.reset();
    }
}

TEST_F(AuthorizePath, CancelledLeavesAnEarlierGrant) {
    EXPECT_EQ(authorize(0, {"file://" + chosen}), nullptr);
    outcomes.clear();
    portal.reset();
    EXPECT_NE(authorize(1, {}), nullptr);
    EXPECT_EQ(grantOf(requested), chosen);
}

TEST_F(AuthorizePath, AFolderThatCannotBeKeptIsLoggedAndTheOutcome) {
    const ErrorPtr error = authorize(0, {"file://" + folder.file("missing")});
    ASSERT_NE(error, nullptr);
    EXPECT_EQ(error->domain(), NSCocoaErrorDomain);
    EXPECT_EQ(error->code(), NSFileReadNoSuchFileError);
    EXPECT_THAT(log.lines, ElementsAre("Error creating bookmark Error Domain=NSCocoaErrorDomain "
                                       "Code=260 \"The folder is gone: " +
                                       folder.file("missing") + "\""));
    EXPECT_FALSE(std::filesystem::exists(defaultsFile()));
}

TEST_F(AuthorizePath, KeepsADocumentOfTheStoreByItsIdentifier) {
    ::setenv("XDG_RUNTIME_DIR", folder.path().c_str(), 1); // NOLINT(concurrency-mt-unsafe)
    std::filesystem::create_directories(folder.file("doc/3f0a/GPS"));
    EXPECT_EQ(authorize(0, {"file://" + folder.file("doc/3f0a/GPS")}), nullptr);
    EXPECT_EQ(grantOf(requested), folder.file("doc/3f0a/GPS"));
    const auto data = UserDefaults::standardUserDefaults().dataForKey(
        *GPSStorageAuthorization::authorizedBookmarkKeyForPath(requested));
    ASSERT_TRUE(data);
    EXPECT_THAT(std::string(data->begin(), data->end()), ::testing::HasSubstr("\ndocument 3f0a\n"));
}

TEST_F(AuthorizePath, APortalThatDiesIsTheOutcomeOnce) {
    startPortal();
    begin();
    ASSERT_TRUE(wasCalled());
    portal->die();
    const ErrorPtr error = outcome();
    ASSERT_NE(error, nullptr);
    EXPECT_EQ(error->domain(), openPanelErrorDomain);
    EXPECT_EQ(error->code(), openPanelError::portalGone);
    EXPECT_FALSE(std::filesystem::exists(defaultsFile()));
}

TEST_F(AuthorizePath, AGrantThatCannotBeWrittenIsOneLine) {
    testing::writeFile(folder.file("org.example.Test"), "in the way");
    EXPECT_EQ(authorize(0, {"file://" + chosen}), nullptr); // as the bookmark was made
    EXPECT_THAT(log.lines, ElementsAre(StartsWith("Error writing the user defaults")));
}

TEST_F(AuthorizePath, ReportsWhetherTheGrantWasKept) {
    std::vector<std::error_code> keeping;
    const auto report = [&](const ErrorPtr &error, std::error_code reason) {
        outcomes.push_back(error);
        keeping.push_back(reason);
    };
    for (int round = 0; round < 2; ++round) {
        startPortal();
        GPSStorageAuthorization::authorizePathAndReport(requested, "", report);
        ASSERT_TRUE(wasCalled());
        portal->respond(0, {"file://" + chosen});
        EXPECT_EQ(outcome(), nullptr);
        outcomes.clear();
        portal.reset();
        std::filesystem::remove_all(folder.file("org.example.Test"));
        testing::writeFile(folder.file("org.example.Test"), "in the way");
    }
    EXPECT_THAT(keeping,
                ElementsAre(std::error_code(), std::make_error_code(std::errc::not_a_directory)));
}

TEST_F(AuthorizePath, KeepsTheCompletionUntilItHasRunAndNoLonger) {
    startPortal();
    auto held = std::make_shared<int>(1);
    const std::weak_ptr<int> completion = held;
    GPSStorageAuthorization::authorizePath(
        requested, "", [this, held](const ErrorPtr &error) { outcomes.push_back(error); });
    held.reset();
    ASSERT_TRUE(wasCalled());
    EXPECT_FALSE(completion.expired());
    portal->respond(1, {});
    EXPECT_NE(outcome(), nullptr);
    EXPECT_TRUE(completion.expired());
}

TEST_F(AuthorizePath, WithoutACompletionKeepsTheGrantToo) {
    startPortal();
    GPSStorageAuthorization::authorizePath(requested, "", nullptr);
    ASSERT_TRUE(wasCalled());
    portal->respond(0, {"file://" + chosen});
    EXPECT_TRUE(testing::runLoopUntil([this] { return std::filesystem::exists(defaultsFile()); }));
}

} // namespace
} // namespace pelluvia
