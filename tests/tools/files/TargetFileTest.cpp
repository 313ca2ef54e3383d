// SPDX-License-Identifier: MIT

#include <tools/pelluvia/files/TargetFile.h>

#include <tests/support/TemporaryFolder.h>

#include <Pelluvia/system/OutputFile.h>

#include <csignal>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace pelluvia::host {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::readFile;
using testing::TemporaryFolder;
using ::testing::UnorderedElementsAre;
using testing::writeFile;

std::vector<std::string> entries(const fs::path &folder) {
    std::vector<std::string> names;
    for (const auto &entry : fs::directory_iterator(folder)) {
        names.push_back(entry.path().filename().string());
    }
    return names;
}

std::unique_ptr<TargetFile> opened(const std::string &path,
                                   const TargetFile::Options &options = {}) {
    std::error_code error;
    auto target = TargetFile::open(path, options, error);
    EXPECT_NE(target, nullptr) << error.message();
    return target;
}

constexpr TargetFile::Options replacing = {.mayReplace = true};
constexpr TargetFile::Options live = {.isSynced = true, .isLive = true};

std::error_code whyNotOpened(const std::string &path) {
    std::error_code error;
    EXPECT_EQ(TargetFile::open(path, replacing, error), nullptr);
    return error;
}

/// Writes as who converts does: to what the target's path names.
void write(const TargetFile &target, std::string_view content) {
    std::error_code error;
    const auto file = OutputFile::open(target.writePath(), error);
    ASSERT_NE(file, nullptr) << error.message();
    file->write(content);
    EXPECT_FALSE(file->close());
}

TEST(TargetFile, AppearsUnderItsNameOnlyWhenItIsKept) {
    const TemporaryFolder folder;
    const auto target = opened(folder.file("out.gpx"));
    write(*target, "content");
    EXPECT_THAT(entries(folder.path()), IsEmpty());

    EXPECT_FALSE(target->keep());
    EXPECT_EQ(readFile(folder.file("out.gpx")), "content");
    EXPECT_EQ(target->keptName(), folder.file("out.gpx"));
    EXPECT_FALSE(target->isKeptBeside());
    EXPECT_THAT(entries(folder.path()), ElementsAre("out.gpx"));
}

TEST(TargetFile, NothingStaysUnlessItIsKept) {
    const TemporaryFolder folder;
    folder.write("out.gpx", "good");
    write(*opened(folder.file("out.gpx"), replacing), "half");
    write(*opened(folder.file("new.gpx")), "half");
    EXPECT_THAT(entries(folder.path()), ElementsAre("out.gpx"));
    EXPECT_EQ(readFile(folder.file("out.gpx")), "good");
}

TEST(TargetFile, AFileThatIsThereIsOnlyReplacedWhereItMayBe) {
    const TemporaryFolder folder;
    const std::string path = folder.write("out.gpx", "good");
    fs::create_symlink("out.gpx", folder.file("link"));
    for (const std::string &name : {path, folder.file("link")}) {
        std::error_code error;
        EXPECT_EQ(TargetFile::open(name, {}, error), nullptr);
        EXPECT_EQ(error, std::errc::file_exists);
    }
    EXPECT_EQ(readFile(path), "good");
}

TEST(TargetFile, AFileThatAppearsMeanwhileIsNotReplaced) {
    const TemporaryFolder folder;
    const std::string path = folder.file("out.gpx");
    for (const TargetFile::Options &options : {TargetFile::Options(), live}) {
        const auto target = opened(path, options);
        write(*target, "new");
        writeFile(path, "another's");
        EXPECT_EQ(target->keep(), std::errc::file_exists);
        EXPECT_TRUE(target->isKeptBeside());
        EXPECT_EQ(target->keptName(), path + ".partial");
        EXPECT_EQ(readFile(path), "another's");
        EXPECT_EQ(readFile(path + ".partial"), "new");
        fs::remove(path);
        fs::remove(path + ".partial");
    }

    const auto target = opened(path, replacing);
    write(*target, "new");
    writeFile(path, "another's");
    EXPECT_FALSE(target->keep());
    EXPECT_EQ(readFile(path), "new");
    EXPECT_THAT(entries(folder.path()), ElementsAre("out.gpx"));
}

TEST(TargetFile, IsWrittenThroughADescriptorAndNotByAName) {
    const TemporaryFolder folder;
    for (const TargetFile::Options &options : {TargetFile::Options(), live}) {
        const auto target = opened(folder.file("out.gpx"), options);
        EXPECT_TRUE(OutputFile::descriptorNamedBy(target->writePath()));
    }
}

TEST(TargetFile, TheSamePlaceIsKnownByAllItsNames) {
    const TemporaryFolder folder;
    const std::string path = folder.file("out.gpx");
    fs::create_symlink("out.gpx", folder.file("link"));
    for (const bool exists : {false, true}) {
        EXPECT_TRUE(TargetFile::isSamePlace(path, path)) << exists;
        EXPECT_TRUE(TargetFile::isSamePlace(path, folder.file("./out.gpx"))) << exists;
        EXPECT_TRUE(TargetFile::isSamePlace(folder.file("link"), path)) << exists;
        EXPECT_FALSE(TargetFile::isSamePlace(path, folder.file("other"))) << exists;
        folder.write("out.gpx", "");
    }
    EXPECT_TRUE(TargetFile::isSamePlace("-", "/dev/stdout"));
    EXPECT_TRUE(TargetFile::isSamePlace("/dev/fd/1", "-"));
    EXPECT_FALSE(TargetFile::isSamePlace("-", "/dev/stderr"));
    EXPECT_FALSE(TargetFile::isSamePlace("-", path));
    EXPECT_TRUE(TargetFile::isSamePlace("", ""));
}

TEST(TargetFile, ReplacesAFileWithItsPermissions) {
    const TemporaryFolder folder;
    const std::string path = folder.write("out.gpx", "old");
    ASSERT_EQ(::chmod(path.c_str(), 0640), 0);
    const auto target = opened(path, replacing);
    write(*target, "new");
    EXPECT_FALSE(target->keep());
    EXPECT_EQ(readFile(path), "new");
    EXPECT_EQ(fs::status(path).permissions(), fs::perms(0640));
}

TEST(TargetFile, ANewFileHasThePermissionsOfNewFiles) {
    const TemporaryFolder folder;
    const mode_t before = ::umask(027);
    const auto target = opened(folder.file("out.gpx"));
    EXPECT_FALSE(target->keep());
    ::umask(before);
    EXPECT_EQ(fs::status(folder.file("out.gpx")).permissions(), fs::perms(0640));
}

TEST(TargetFile, ALinkStaysAndItsFileIsReplaced) {
    const TemporaryFolder folder;
    fs::create_directory(folder.path() / "real");
    folder.write("real/file.gpx", "old");
    fs::create_symlink("real/file.gpx", folder.file("second"));
    fs::create_symlink(folder.file("second"), folder.file("first.gpx"));

    const auto target = opened(folder.file("first.gpx"), replacing);
    write(*target, "new");
    EXPECT_FALSE(target->keep());
    EXPECT_TRUE(fs::is_symlink(folder.file("first.gpx")));
    EXPECT_EQ(readFile(folder.file("real/file.gpx")), "new");
}

TEST(TargetFile, ALinkThatLeadsNowhereYetIsFollowed) {
    const TemporaryFolder folder;
    fs::create_symlink("later.gpx", folder.file("link.gpx"));
    EXPECT_FALSE(opened(folder.file("link.gpx"))->keep());
    EXPECT_TRUE(fs::is_symlink(folder.file("link.gpx")));
    EXPECT_TRUE(fs::is_regular_file(folder.file("later.gpx")));
}

TEST(TargetFile, APartialResultGetsAFreeName) {
    const TemporaryFolder folder;
    const auto target = opened(folder.file("out.gpx"));
    write(*target, "half");
    EXPECT_FALSE(target->keepPartial());
    EXPECT_EQ(target->keptName(), folder.file("out.gpx"));
    EXPECT_EQ(readFile(folder.file("out.gpx")), "half");
}

TEST(TargetFile, APartialResultReplacesNothing) {
    const TemporaryFolder folder;
    const std::string path = folder.write("out.gpx", "good");
    folder.write("out.gpx.partial", "older");
    fs::create_symlink("nowhere", folder.file("out.gpx.partial.2"));
    for (const auto &[options, name] :
         {std::pair(replacing, "out.gpx.partial.3"), std::pair(replacing, "out.gpx.partial.4")}) {
        const auto target = opened(path, options);
        write(*target, "half");
        EXPECT_FALSE(target->keepPartial());
        EXPECT_TRUE(target->isKeptBeside());
        EXPECT_EQ(target->keptName(), folder.file(name));
        EXPECT_EQ(readFile(folder.file(name)), "half");
    }
    EXPECT_EQ(readFile(path), "good");
    EXPECT_EQ(readFile(path + ".partial"), "older");
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), {}), 5);
}

TEST(TargetFile, ALongNameLeavesRoomForThePartialOne) {
    const TemporaryFolder folder;
    // The name is cut in the middle of a character of two bytes, which goes as a whole.
    const std::string path = folder.write(std::string(246, 'x') + "\xC3\xBC.gpxes", "good");
    const auto target = opened(path, replacing);
    EXPECT_FALSE(target->keepPartial());
    EXPECT_EQ(target->keptName(), folder.file(std::string(246, 'x') + ".partial"));
}

TEST(TargetFile, ALiveTargetHasAPartialNameUntilItIsComplete) {
    const TemporaryFolder folder;
    const std::string path = folder.file("out.gpx");
    folder.write("out.gpx.partial", "older");
    const auto target = opened(path, live);
    write(*target, "new");
    EXPECT_FALSE(target->sync());
    EXPECT_EQ(readFile(path + ".partial.2"), "new");
    EXPECT_FALSE(target->keep());
    EXPECT_EQ(readFile(path), "new");
    EXPECT_THAT(entries(folder.path()), UnorderedElementsAre("out.gpx", "out.gpx.partial"));
}

TEST(TargetFile, ALiveTargetReplacesAFileWhereItMay) {
    const TemporaryFolder folder;
    const std::string path = folder.write("out.gpx", "old");
    const auto target = opened(path, {.mayReplace = true, .isLive = true});
    write(*target, "new");
    EXPECT_EQ(readFile(path), "old");
    EXPECT_FALSE(target->keep());
    EXPECT_EQ(readFile(path), "new");
    EXPECT_THAT(entries(folder.path()), ElementsAre("out.gpx"));
}

TEST(TargetFile, OfALiveTargetStaysWhatReachedTheFile) {
    const TemporaryFolder folder;
    const std::string path = folder.file("out.gpx");
    opened(path, live).reset();
    EXPECT_THAT(entries(folder.path()), IsEmpty()); // there was nothing yet

    const auto target = opened(path, live);
    write(*target, "half");
    target->giveUp();
    EXPECT_EQ(target->keptName(), path + ".partial");
    EXPECT_EQ(readFile(path + ".partial"), "half");

    write(*opened(path, live), "half"); // and without a word of who fails
    EXPECT_EQ(readFile(path + ".partial.2"), "half");
}

TEST(TargetFile, APartialLiveTargetGetsAFreeName) {
    const TemporaryFolder folder;
    const std::string path = folder.file("out.gpx");
    const auto target = opened(path, live);
    write(*target, "half");
    EXPECT_FALSE(target->keepPartial());
    EXPECT_EQ(target->keptName(), path);
    EXPECT_THAT(entries(folder.path()), ElementsAre("out.gpx"));

    const auto second = opened(path, {.mayReplace = true, .isLive = true});
    write(*second, "half");
    EXPECT_FALSE(second->keepPartial());
    EXPECT_EQ(second->keptName(), path + ".partial");
    EXPECT_THAT(entries(folder.path()), UnorderedElementsAre("out.gpx", "out.gpx.partial"));
}

TEST(TargetFile, DevicesPipesAndDescriptorsAreWrittenDirectly) {
    const TemporaryFolder folder;
    const std::string pipe = folder.file("pipe");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    for (const auto &[path, written] :
         std::vector<std::pair<std::string, std::string>>{{"/dev/null", "/dev/null"},
                                                          {"-", "/dev/stdout"},
                                                          {"/dev/stdout", "/dev/stdout"},
                                                          {"/dev/fd/2", "/dev/fd/2"},
                                                          {pipe, pipe}}) {
        const auto target = opened(path, {.isSynced = true});
        EXPECT_EQ(target->writePath(), written);
        EXPECT_FALSE(target->keep());
        EXPECT_FALSE(target->keepPartial());
        EXPECT_EQ(target->keptName(), "");
    }
    EXPECT_THAT(entries(folder.path()), ElementsAre("pipe"));
}

TEST(TargetFile, TellsWhyATargetCannotBeWritten) {
    const TemporaryFolder folder;
    folder.write("file", "");
    EXPECT_EQ(whyNotOpened(folder.file("missing/out.gpx")), std::errc::no_such_file_or_directory);
    EXPECT_EQ(whyNotOpened(folder.file("file/out.gpx")), std::errc::not_a_directory);
    EXPECT_EQ(whyNotOpened(folder.path().string()), std::errc::is_a_directory);
    EXPECT_EQ(whyNotOpened(folder.file("new/")), std::errc::is_a_directory);
    EXPECT_EQ(whyNotOpened(""), std::errc::no_such_file_or_directory);
    EXPECT_EQ(whyNotOpened(folder.file(std::string(300, 'x'))), std::errc::filename_too_long);
    EXPECT_TRUE(whyNotOpened("/proc/out.gpx"));
    fs::create_symlink("loop", folder.file("loop"));
    EXPECT_EQ(whyNotOpened(folder.file("loop")), std::errc::too_many_symbolic_link_levels);
    EXPECT_THAT(entries(folder.path()), UnorderedElementsAre("file", "loop"));
}

TEST(TargetFile, ALongNameLeavesRoomForTheTemporaryOne) {
    const TemporaryFolder folder;
    const std::string path = folder.file(std::string(251, 'x') + ".gpx");
    EXPECT_FALSE(opened(path)->keep());
    EXPECT_TRUE(fs::exists(path));
}

TEST(TargetFile, APlainNameIsInTheWorkingFolder) {
    const TemporaryFolder folder;
    const fs::path before = fs::current_path();
    fs::current_path(folder.path());
    EXPECT_FALSE(opened("out.gpx")->keep());
    fs::current_path(before);
    EXPECT_THAT(entries(folder.path()), ElementsAre("out.gpx"));
}

/// Opens a target in a process of its own, which a signal then ends.
int statusAfterSignal(int signal, const std::string &path, const TargetFile::Options &options) {
    const pid_t child = ::fork();
    if (child == 0) {
        std::error_code error;
        const auto target = TargetFile::open(path, options, error);
        write(*target, "half");
        ::raise(signal);
        ::_exit(99);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return status;
}

TEST(TargetFile, NothingStaysWhenASignalEndsTheProcess) {
    const TemporaryFolder folder;
    for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGUSR1, SIGXCPU, SIGKILL}) {
        const int status = statusAfterSignal(signal, folder.file("out.gpx"), {});
        EXPECT_TRUE(WIFSIGNALED(status));
        EXPECT_EQ(WTERMSIG(status), signal);
        EXPECT_THAT(entries(folder.path()), IsEmpty());
    }
}

TEST(TargetFile, ALiveTargetOutlivesTheProcess) {
    const TemporaryFolder folder;
    EXPECT_EQ(statusAfterSignal(SIGKILL, folder.file("out.gpx"), live), SIGKILL);
    EXPECT_EQ(readFile(folder.file("out.gpx.partial")), "half");
}

} // namespace
} // namespace pelluvia::host
