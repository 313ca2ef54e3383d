// SPDX-License-Identifier: MIT

#include <tools/pelluvia/files/TemporaryFile.h>

#include <tests/support/TemporaryFolder.h>

#include <csignal>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace pelluvia::host {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::readFile;
using ::testing::StartsWith;
using testing::TemporaryFolder;

std::vector<std::string> entries(const fs::path &folder) {
    std::vector<std::string> names;
    for (const auto &entry : fs::directory_iterator(folder)) {
        names.push_back(entry.path().filename().string());
    }
    return names;
}

using Maker = std::unique_ptr<TemporaryFile>(const std::string &path, const AccessRights *rights,
                                             std::error_code &error);

std::unique_ptr<TemporaryFile> made(Maker *maker, const std::string &path) {
    std::error_code error;
    auto file = maker(path, nullptr, error);
    EXPECT_NE(file, nullptr) << error.message();
    return file;
}

void write(const TemporaryFile &file, std::string_view content) {
    EXPECT_EQ(::write(file.descriptor(), content.data(), content.size()),
              static_cast<ssize_t>(content.size()));
}

/// With and without a name meanwhile: not every file system has files without one.
class TemporaryFiles : public ::testing::TestWithParam<Maker *> {
  protected:
    TemporaryFolder folder;
};

TEST_P(TemporaryFiles, TakeANameThatIsFree) {
    const std::string path = folder.file("out");
    const auto file = made(GetParam(), path);
    write(*file, "content");
    EXPECT_FALSE(file->take(path));
    EXPECT_EQ(readFile(path), "content");
    EXPECT_THAT(entries(folder.path()), ElementsAre("out"));
}

TEST_P(TemporaryFiles, TakeNoNameThatIsTaken) {
    const std::string path = folder.write("out", "another's");
    {
        const auto file = made(GetParam(), path);
        EXPECT_EQ(file->take(path), std::errc::file_exists);
    }
    EXPECT_EQ(readFile(path), "another's");
    EXPECT_THAT(entries(folder.path()), ElementsAre("out"));
}

TEST_P(TemporaryFiles, ReplaceAFile) {
    const std::string path = folder.write("out", "old");
    const auto file = made(GetParam(), path);
    write(*file, "new");
    EXPECT_FALSE(file->replace(path));
    EXPECT_EQ(readFile(path), "new");
    EXPECT_THAT(entries(folder.path()), ElementsAre("out"));
}

TEST_P(TemporaryFiles, LeaveNothingWhenANameCannotBeHad) {
    fs::create_directory(folder.file("out"));
    {
        const auto file = made(GetParam(), folder.file("out"));
        EXPECT_EQ(file->replace(folder.file("out")), std::errc::is_a_directory);
        EXPECT_EQ(file->take(folder.file("missing/out")), std::errc::no_such_file_or_directory);
        EXPECT_EQ(file->replace(folder.file("missing/out")), std::errc::no_such_file_or_directory);
    }
    EXPECT_THAT(entries(folder.path()), ElementsAre("out"));
}

TEST_P(TemporaryFiles, LeaveNothingUnlessTheyAreNamed) {
    made(GetParam(), folder.file("out")).reset();
    EXPECT_THAT(entries(folder.path()), IsEmpty());
}

TEST_P(TemporaryFiles, HaveTheRightsOfNewFilesWhereTheyTakeNobodysPlace) {
    const mode_t before = ::umask(027);
    EXPECT_FALSE(made(GetParam(), folder.file("out"))->take(folder.file("out")));
    ::umask(before);
    EXPECT_EQ(fs::status(folder.file("out")).permissions(), fs::perms(0640));
}

INSTANTIATE_TEST_SUITE_P(TemporaryFile, TemporaryFiles,
                         ::testing::Values(TemporaryFile::makeBeside, TemporaryFile::makeHidden),
                         [](const auto &each) {
                             return each.param == TemporaryFile::makeBeside ? "Beside" : "Hidden";
                         });

TEST(TemporaryFile, AHiddenNameIsMadeOfTheName) {
    const TemporaryFolder folder;
    const auto file = made(TemporaryFile::makeHidden, folder.file("out.gpx"));
    EXPECT_THAT(entries(folder.path()), ElementsAre(StartsWith(".out.gpx.")));
}

TEST(TemporaryFile, AFewMayBeHiddenAtATime) {
    const TemporaryFolder folder;
    const auto first = made(TemporaryFile::makeHidden, folder.file("a"));
    {
        const auto second = made(TemporaryFile::makeHidden, folder.file("b"));
        std::error_code error;
        EXPECT_EQ(TemporaryFile::makeHidden(folder.file("c"), nullptr, error), nullptr);
        EXPECT_EQ(error, std::errc::too_many_files_open);
        EXPECT_FALSE(second->take(folder.file("b")));
    }
    made(TemporaryFile::makeHidden, folder.file("c"));
}

TEST(TemporaryFile, AHiddenNameGoesWhenASignalEndsTheProcess) {
    const TemporaryFolder folder;
    for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGUSR1, SIGUSR2, SIGALRM, SIGXCPU,
                             SIGVTALRM, SIGPROF}) {
        const pid_t child = ::fork();
        if (child == 0) {
            std::error_code error;
            const auto file = TemporaryFile::makeHidden(folder.file("out"), nullptr, error);
            ::raise(signal);
            ::_exit(99);
        }
        int status = 0;
        ::waitpid(child, &status, 0);
        EXPECT_TRUE(WIFSIGNALED(status));
        EXPECT_EQ(WTERMSIG(status), signal);
        EXPECT_THAT(entries(folder.path()), IsEmpty());
    }
}

TEST(TemporaryFile, AVisibleNameIsOnlyTakenWhereItIsFree) {
    const TemporaryFolder folder;
    const auto file = made(TemporaryFile::makeVisible, folder.file("out"));
    EXPECT_EQ(file->name(), folder.file("out"));
    std::error_code error;
    EXPECT_EQ(TemporaryFile::makeVisible(folder.file("out"), nullptr, error), nullptr);
    EXPECT_EQ(error, std::errc::file_exists);
    file->stay();
    EXPECT_THAT(entries(folder.path()), ElementsAre("out"));
}

} // namespace
} // namespace pelluvia::host
