// SPDX-License-Identifier: MIT

// Only where the command is built.
#ifdef PELLUVIA_PROGRAM
#include <tests/storage/PanelTest.h>
#include <tests/storage/Probe.h>

#include <Pelluvia/storage/Bookmark.h>
#include <Pelluvia/storage/GPSStorageAuthorization.h>

#include <filesystem>
#include <gmock/gmock.h>
#include <thread>

/// \file
/// `pelluvia authorize` and `pelluvia authorized`, run as a user does.

namespace pelluvia {
namespace {

using ::testing::HasSubstr;

class StorageCommand : public testing::PanelTest {
  protected:
    StorageCommand() {
        std::filesystem::create_directory(chosen);
        UserDefaults::setApplicationIdentifier("pelluvia"); // the command's own defaults
    }

    /// Runs the command while the test's portal answers it.
    static testing::Outcome pelluvia(std::vector<std::string> arguments,
                                     const std::string &program = PELLUVIA_PROGRAM) {
        testing::Outcome outcome;
        bool hasEnded = false;
        std::thread runner([&] {
            outcome = testing::run(program, {.arguments = std::move(arguments)});
            g_idle_add(
                [](gpointer ended) -> gboolean {
                    *static_cast<bool *>(ended) = true;
                    return G_SOURCE_REMOVE;
                },
                &hasEnded);
        });
        EXPECT_TRUE(testing::runLoopUntil([&] { return hasEnded; }));
        runner.join();
        return outcome;
    }
    void answer(std::uint32_t response, const std::vector<std::string> &uris) {
        startPortal().onOpenFile = [=](testing::ScriptedPortal &self, GDBusMethodInvocation *call) {
            self.giveHandle(call);
            self.respond(response, uris);
        };
    }

    std::string chosen = folder.file("chosen folder");
    std::string uri = "file://" + folder.file("chosen%20folder");
};

TEST_F(StorageCommand, AuthorizeKeepsTheGrantAndAuthorizedPrintsIt) {
    answer(0, {uri});
    const testing::Outcome asked = pelluvia({"authorize", "/GPS"});
    EXPECT_EQ(asked.status, 0) << asked.errors;
    EXPECT_EQ(asked.output, uri + "\n");
    EXPECT_EQ(asked.errors, "");
    EXPECT_EQ(GPSStorageAuthorization::authorizedBookmarkURLForPath("/GPS", nullptr)->path(),
              chosen);

    const testing::Outcome shown = pelluvia({"authorized", "/GPS"});
    EXPECT_EQ(shown.status, 0);
    EXPECT_EQ(shown.output, uri + "\n");
}

TEST_F(StorageCommand, AuthorizedSaysThatThereIsNone) {
    const testing::Outcome shown = pelluvia({"authorized", "/GPS"});
    EXPECT_EQ(shown.status, 1);
    EXPECT_EQ(shown.output, "");
    EXPECT_EQ(shown.errors, "pelluvia: there is no grant for /GPS (--verbose says why)\n");
    const testing::Outcome verbose = pelluvia({"authorized", "-v", "--", "-GPS"});
    EXPECT_EQ(verbose.status, 1);
    EXPECT_EQ(verbose.errors, "log: Error resolving bookmark: Error Domain=NSCocoaErrorDomain "
                              "Code=259 \"There is no bookmark\"\n"
                              "pelluvia: there is no grant for -GPS\n");
}

TEST_F(StorageCommand, AuthorizeSaysThatItWasCancelled) {
    answer(1, {});
    const testing::Outcome asked = pelluvia({"authorize", "/GPS"});
    EXPECT_EQ(asked.status, 1);
    EXPECT_EQ(asked.output, "");
    EXPECT_EQ(asked.errors, "pelluvia: no folder was granted for /GPS: cancelled\n");
    EXPECT_FALSE(std::filesystem::exists(folder.file("pelluvia")));
}

TEST_F(StorageCommand, AuthorizeSaysThatNobodyCanBeAsked) {
    const testing::Outcome asked = pelluvia({"authorize", "/GPS"});
    EXPECT_EQ(asked.status, 1);
    EXPECT_THAT(asked.errors, HasSubstr("There is no desktop portal"));
}

TEST_F(StorageCommand, AGrantThatCannotBeKeptIsStatus3) {
    testing::writeFile(folder.file("pelluvia"), "in the way");
    answer(0, {uri});
    const testing::Outcome asked = pelluvia({"authorize", "/GPS"});
    EXPECT_EQ(asked.status, 3);
    EXPECT_EQ(asked.output, "");
    EXPECT_EQ(asked.errors, "pelluvia: the grant could not be kept in " + folder.file("pelluvia") +
                                ": Not a directory\n");
}

TEST_F(StorageCommand, ADamagedLineIsToldByBothAndByTheirStatus) {
    const std::string defaults = folder.file("pelluvia/defaults.ini");
    for (const std::string command : {"authorize", "authorized"}) {
        answer(0, {uri});
        ASSERT_EQ(pelluvia({"authorize", "/GPS"}).status, 0);
        testing::writeFile(defaults, testing::readFile(defaults) + "nonsense\n");
        const testing::Outcome told = pelluvia({command, "/GPS"});
        EXPECT_EQ(told.status, 1) << command;
        EXPECT_EQ(told.output, uri + "\n");
        EXPECT_THAT(told.errors, ::testing::AllOf(HasSubstr(defaults), HasSubstr("damaged"),
                                                  HasSubstr("line 3"), HasSubstr(".damaged")));
        const testing::Outcome mended = pelluvia({"authorized", "/GPS"});
        EXPECT_EQ(mended.status, 0) << command;
        EXPECT_EQ(mended.errors, "");
        portal.reset();
    }
}

TEST_F(StorageCommand, AGrantThatWasDamagedIsMissingAndTheDamageIsTold) {
    std::filesystem::create_directories(folder.file("pelluvia"));
    testing::writeFile(folder.file("pelluvia/defaults.ini"),
                       "[Defaults]\nGPSStorageAuthorization:/GPS=data:UGVs!\n");
    const testing::Outcome told = pelluvia({"authorized", "/GPS"});
    EXPECT_EQ(told.status, 1);
    EXPECT_EQ(told.output, "");
    EXPECT_THAT(told.errors, ::testing::AllOf(HasSubstr("damaged"), HasSubstr("line 2"),
                                              HasSubstr("there is no grant for /GPS")));
}

TEST_F(StorageCommand, WithoutItsHelperTheProgramSaysSo) {
    std::filesystem::create_directory(folder.file("bin"));
    const std::string copy = folder.file("bin/pelluvia");
    const std::filesystem::path program = PELLUVIA_PROGRAM;
    std::filesystem::copy_file(program, copy);
    // Its libraries are found from where it lies.
    std::filesystem::create_directory_symlink(program.parent_path().parent_path() / "lib",
                                              folder.file("lib"));
    for (const char *command : {"authorize", "authorized"}) {
        const testing::Outcome outcome = pelluvia({command, "/GPS"}, copy);
        EXPECT_EQ(outcome.status, 1);
        EXPECT_THAT(outcome.errors,
                    ::testing::AllOf(HasSubstr("is not installed"), HasSubstr("pelluvia-storage")));
    }
}

TEST_F(StorageCommand, TheHelperIsNotForPeople) {
    for (const std::vector<std::string> &arguments :
         std::vector<std::vector<std::string>>{{}, {"authorize"}, {"nonsense", "--", "/GPS"}}) {
        const testing::Outcome outcome = pelluvia(arguments, PELLUVIA_STORAGE_HELPER);
        EXPECT_EQ(outcome.status, 2);
        EXPECT_THAT(outcome.errors, HasSubstr("try: pelluvia authorize --help"));
    }
}

} // namespace
} // namespace pelluvia

#endif
