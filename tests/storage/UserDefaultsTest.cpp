// SPDX-License-Identifier: MIT

#include <Pelluvia/storage/UserDefaults.h>

#include <tests/storage/OwnDefaults.h>
#include <tests/storage/Probe.h>

#include <filesystem>
#include <gmock/gmock.h>
#include <set>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace pelluvia {
namespace {

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

std::set<std::string> filesIn(const std::string &folder) {
    std::set<std::string> names;
    for (const auto &entry : std::filesystem::directory_iterator(folder)) {
        names.insert(entry.path().filename());
    }
    return names;
}

class UserDefaultsOfATest : public testing::OwnDefaults {
  protected:
    UserDefaults defaults = UserDefaults::standardUserDefaults();

    static unsigned modeOf(const std::string &path) {
        struct stat status {};
        EXPECT_EQ(::stat(path.c_str(), &status), 0) << path;
        return status.st_mode & 0777U;
    }
};

TEST_F(UserDefaultsOfATest, GiveBackWhatWasSet) {
    defaults.setObject(Data{1, 0, 255}, "data");
    defaults.setObject("text", "string");
    defaults.setObject(std::int64_t{7}, "integer");
    defaults.setObject(2.5, "real");
    const UserDefaults others = UserDefaults::standardUserDefaults();
    EXPECT_EQ(others.dataForKey("data"), (Data{1, 0, 255}));
    EXPECT_EQ(others.stringForKey("string"), "text");
    EXPECT_EQ(others.integerForKey("integer"), 7);
    EXPECT_EQ(others.doubleForKey("real"), 2.5);
    EXPECT_THAT(log.lines, IsEmpty());
}

TEST_F(UserDefaultsOfATest, AValueOfAnotherTypeIsNotGiven) {
    defaults.setObject("7", "key");
    EXPECT_EQ(defaults.integerForKey("key"), std::nullopt);
    EXPECT_EQ(defaults.doubleForKey("key"), std::nullopt);
    EXPECT_EQ(defaults.dataForKey("key"), std::nullopt);
    EXPECT_EQ(defaults.stringForKey("Key"), std::nullopt);
}

TEST_F(UserDefaultsOfATest, ReadingMakesNothing) {
    EXPECT_EQ(defaults.objectForKey("key"), std::nullopt);
    EXPECT_FALSE(std::filesystem::exists(defaults.folder()));
    EXPECT_THAT(log.lines, IsEmpty());
}

TEST_F(UserDefaultsOfATest, ARemovedKeyIsGone) {
    defaults.setObject("x", "key");
    defaults.removeObjectForKey("key");
    EXPECT_EQ(defaults.objectForKey("key"), std::nullopt);
}

TEST_F(UserDefaultsOfATest, AreForTheUserAlone) {
    const auto before = ::umask(0);
    defaults.setObject("x", "key");
    ::umask(before);
    EXPECT_EQ(modeOf(defaults.folder()), 0700U);
    EXPECT_EQ(modeOf(defaultsFile()), 0600U);
    EXPECT_EQ(modeOf(defaultsFile("defaults.lock")), 0600U);
}

TEST_F(UserDefaultsOfATest, AreWrittenUnderAnUmaskThatForbidsEverything) {
    const UserDefaults deep(folder.file("a/b"));
    const auto before = ::umask(0777);
    deep.setObject("x", "key");
    deep.setObject("y", "key");
    ::umask(before);
    EXPECT_EQ(deep.stringForKey("key"), "y");
    EXPECT_EQ(modeOf(folder.file("a")), 0700U);
    EXPECT_EQ(modeOf(folder.file("a/b")), 0700U);
    EXPECT_EQ(modeOf(folder.file("a/b/defaults.ini")), 0600U);
    EXPECT_EQ(modeOf(folder.file("a/b/defaults.lock")), 0600U);
}

TEST_F(UserDefaultsOfATest, LieInTheConfigurationFolder) {
    EXPECT_EQ(defaults.folder(), folder.file("org.example.Test"));
    ::setenv("XDG_CONFIG_HOME", "relative", 1); // NOLINT(concurrency-mt-unsafe)
    const std::string atHome = UserDefaults::standardUserDefaults().folder();
    EXPECT_EQ(atHome.front(), '/');
    EXPECT_THAT(atHome, ::testing::EndsWith("/.config/org.example.Test"));
    ::unsetenv("XDG_CONFIG_HOME"); // NOLINT(concurrency-mt-unsafe)
    EXPECT_EQ(UserDefaults::standardUserDefaults().folder(), atHome);
}

TEST_F(UserDefaultsOfATest, FoldersThatAreMissingAreMade) {
    const UserDefaults deep(folder.file("a/b/c"));
    deep.setObject("x", "key");
    EXPECT_EQ(deep.stringForKey("key"), "x");
    EXPECT_EQ(modeOf(folder.file("a")), 0700U);
}

TEST_F(UserDefaultsOfATest, AnIdentifierThatIsNoFileNameIsNotTaken) {
    for (const std::string_view wrong :
         {std::string_view(""), std::string_view("."), std::string_view(".."),
          std::string_view("a/b"), std::string_view("a\0b", 3)}) {
        EXPECT_FALSE(UserDefaults::setApplicationIdentifier(wrong));
    }
    EXPECT_EQ(UserDefaults::standardUserDefaults().folder(), defaults.folder());
}

TEST_F(UserDefaultsOfATest, OfAProgramWithoutIdentifierBearItsName) {
    const testing::Outcome outcome =
        testing::probe({"folder"}, {{"XDG_CONFIG_HOME", folder.path().string()}});
    EXPECT_EQ(outcome.output, folder.file("storage_probe") + "\n");
}

TEST_F(UserDefaultsOfATest, ABadLineCostsNoOtherAndIsToldOnce) {
    const std::string damage = "[Defaults]\na=string:x\nthis is no line of ours\nb=string:y\n";
    std::filesystem::create_directories(defaults.folder());
    testing::writeFile(defaultsFile(), damage);
    EXPECT_EQ(defaults.stringForKey("a"), "x");
    EXPECT_EQ(defaults.stringForKey("b"), "y");
    EXPECT_THAT(log.lines, ElementsAre(AllOf(HasSubstr(defaultsFile()), HasSubstr("damaged"),
                                             HasSubstr("line 3"), HasSubstr("defaults.damaged"))));
    EXPECT_EQ(testing::readFile(defaultsFile("defaults.damaged")), damage);
    EXPECT_EQ(testing::readFile(defaultsFile()), "[Defaults]\na=string:x\nb=string:y\n");
}

TEST_F(UserDefaultsOfATest, AWriteThatMeetsABadLineKeepsTheGoodOnes) {
    std::filesystem::create_directories(defaults.folder());
    testing::writeFile(defaultsFile(), "[Defaults]\na=string:x\nnonsense\n");
    defaults.setObject("y", "b");
    EXPECT_EQ(testing::readFile(defaultsFile()), "[Defaults]\na=string:x\nb=string:y\n");
    EXPECT_EQ(log.lines.size(), 1U);
}

TEST_F(UserDefaultsOfATest, ASecondDamageLeavesTheCopyOfTheFirst) {
    std::filesystem::create_directories(defaults.folder());
    for (const char *damage : {"first\n", "second\n", "third\n"}) {
        testing::writeFile(defaultsFile(), damage);
        EXPECT_EQ(defaults.stringForKey("key"), std::nullopt);
    }
    EXPECT_EQ(testing::readFile(defaultsFile("defaults.damaged")), "first\n");
    EXPECT_EQ(testing::readFile(defaultsFile("defaults.damaged.2")), "second\n");
    EXPECT_EQ(testing::readFile(defaultsFile("defaults.damaged.3")), "third\n");
    EXPECT_EQ(modeOf(defaultsFile("defaults.damaged")), 0600U);
}

TEST_F(UserDefaultsOfATest, AByteOrderMarkAndCommentsAreRead) {
    std::filesystem::create_directories(defaults.folder());
    const std::string text = "# mine\n[Defaults]\n; my units\nunits=string:metric\n";
    testing::writeFile(defaultsFile(), "\xEF\xBB\xBF" + text);
    EXPECT_EQ(defaults.stringForKey("units"), "metric");
    defaults.setObject("x", "key");
    EXPECT_EQ(testing::readFile(defaultsFile()), text + "key=string:x\n");
    EXPECT_THAT(log.lines, IsEmpty());
}

TEST_F(UserDefaultsOfATest, ASymbolicLinkIsWrittenThrough) {
    const std::string target = folder.file("dotfiles/defaults");
    std::filesystem::create_directories(folder.file("dotfiles"));
    std::filesystem::create_directories(defaults.folder());
    std::filesystem::create_symlink("../dotfiles/link", defaultsFile());
    std::filesystem::create_symlink(target, folder.file("dotfiles/link"));
    for (const char *text : {"made", "changed"}) { // first by way of a link to nothing
        defaults.setObject(text, "key");
        EXPECT_EQ(testing::readFile(target), std::string("[Defaults]\nkey=string:") + text + "\n");
        EXPECT_TRUE(std::filesystem::is_symlink(defaultsFile()));
        EXPECT_TRUE(std::filesystem::is_symlink(folder.file("dotfiles/link")));
    }
    EXPECT_EQ(defaults.stringForKey("key"), "changed");
    EXPECT_THAT(log.lines, IsEmpty());
}

TEST_F(UserDefaultsOfATest, LinksThatGoRoundAreNotReplaced) {
    std::filesystem::create_directories(defaults.folder());
    std::filesystem::create_symlink("defaults.ini", defaultsFile());
    defaults.setObject("x", "key");
    EXPECT_TRUE(std::filesystem::is_symlink(defaultsFile()));
    EXPECT_THAT(log.lines, ElementsAre(HasSubstr("Error writing the user defaults")));
}

TEST_F(UserDefaultsOfATest, AWriteThatMeetsNothingButDamageKeepsItAside) {
    defaults.setObject("x", "key");
    testing::writeFile(defaultsFile(), std::string(1000, '\0'));
    defaults.setObject("y", "other");
    EXPECT_EQ(defaults.stringForKey("other"), "y");
    EXPECT_EQ(log.lines.size(), 1U);
    EXPECT_EQ(testing::readFile(defaultsFile("defaults.damaged")), std::string(1000, '\0'));
}

TEST_F(UserDefaultsOfATest, WhatIsNoFileIsMovedAside) {
    std::filesystem::create_directories(defaults.folder());
    ASSERT_EQ(::mkfifo(defaultsFile().c_str(), 0600), 0);
    EXPECT_EQ(defaults.stringForKey("key"), std::nullopt); // and does not wait for a writer
    EXPECT_EQ(log.lines.size(), 1U);
    EXPECT_TRUE(std::filesystem::is_fifo(defaultsFile("defaults.damaged")));
    std::filesystem::remove(defaultsFile());
    std::filesystem::create_directory(defaultsFile());
    defaults.setObject("y", "key");
    EXPECT_TRUE(std::filesystem::is_directory(defaultsFile("defaults.damaged.2")));
    EXPECT_EQ(defaults.stringForKey("key"), "y");
    EXPECT_EQ(log.lines.size(), 2U);
}

TEST_F(UserDefaultsOfATest, DamageThatCannotBeKeptAsideIsLeftAndItsGoodLinesAreRead) {
    const std::string damage = "[Defaults]\nkey=string:x\nnonsense\n";
    defaults.setObject("x", "key");
    testing::writeFile(defaultsFile(), damage);
    std::filesystem::permissions(folder.path(), std::filesystem::perms(0755));
    std::filesystem::permissions(defaults.folder(), std::filesystem::perms(0555));
    std::filesystem::permissions(defaultsFile(), std::filesystem::perms(0444));
    std::filesystem::permissions(defaultsFile("defaults.lock"), std::filesystem::perms(0666));
    const testing::Outcome outcome =
        testing::probe({"--ordinary", "set", defaults.folder(), "key", "y"});
    EXPECT_EQ(outcome.output, "x\n");
    EXPECT_THAT(outcome.errors, AllOf(HasSubstr("damaged"), HasSubstr("Permission denied")));
    EXPECT_EQ(testing::readFile(defaultsFile()), damage);
}

TEST_F(UserDefaultsOfATest, AFileThatIsTooLargeCountsAsDamaged) {
    std::filesystem::create_directories(defaults.folder());
    testing::writeFile(defaultsFile(), "[Defaults]\n");
    std::filesystem::resize_file(defaultsFile(), UserDefaults::largestFile + 1);
    EXPECT_EQ(defaults.stringForKey("key"), std::nullopt);
    EXPECT_EQ(log.lines.size(), 1U);
}

TEST_F(UserDefaultsOfATest, AWriteThatWouldMakeTheFileTooLargeIsNotMade) {
    defaults.setObject("x", "key");
    defaults.setObject(Data(UserDefaults::largestFile), "large");
    EXPECT_EQ(defaults.stringForKey("key"), "x");
    EXPECT_EQ(defaults.dataForKey("large"), std::nullopt);
    EXPECT_THAT(log.lines, ElementsAre(HasSubstr("Error writing the user defaults")));
}

TEST_F(UserDefaultsOfATest, SayWhetherTheyKeptWhatWasSet) {
    EXPECT_FALSE(defaults.setObject("x", "key"));
    EXPECT_FALSE(defaults.removeObjectForKey("key"));
    EXPECT_EQ(defaults.setObject(Data(UserDefaults::largestFile), "large"),
              std::errc::file_too_large);
    testing::writeFile(folder.file("file"), "in the way");
    const UserDefaults others(folder.file("file/folder"));
    EXPECT_EQ(others.setObject("x", "key"), std::errc::not_a_directory);
    EXPECT_EQ(others.removeObjectForKey("key"), std::errc::not_a_directory);
}

TEST_F(UserDefaultsOfATest, TellAFaultWithoutMendingIt) {
    EXPECT_EQ(defaults.fault(), "");
    EXPECT_FALSE(std::filesystem::exists(defaults.folder()));
    defaults.setObject("x", "key");
    EXPECT_EQ(defaults.fault(), "");
    testing::writeFile(defaultsFile(), "[Defaults]\nnonsense\nmore of it\n");
    testing::writeFile(defaultsFile("defaults.damaged"), "earlier");
    for (int look = 0; look < 2; ++look) {
        EXPECT_EQ(defaults.fault(), "The user defaults in " + defaultsFile() +
                                        " are damaged: line 2 and 1 more cannot be understood; "
                                        "whoever uses them next mends them and keeps what is "
                                        "there in " +
                                        defaultsFile("defaults.damaged.2"));
    }
    EXPECT_THAT(log.lines, IsEmpty());
    EXPECT_EQ(defaults.stringForKey("key"), std::nullopt);
    EXPECT_EQ(defaults.fault(), "");
    std::filesystem::remove(defaultsFile());
    std::filesystem::create_symlink("defaults.ini", defaultsFile());
    EXPECT_THAT(defaults.fault(), HasSubstr("Error reading the user defaults"));
}

TEST_F(UserDefaultsOfATest, AFileInPlaceOfTheFolderIsOneLineForAWrite) {
    testing::writeFile(defaults.folder(), "in the way");
    EXPECT_EQ(defaults.stringForKey("key"), std::nullopt);
    EXPECT_THAT(log.lines, IsEmpty());
    defaults.setObject("x", "key");
    EXPECT_THAT(log.lines, ElementsAre(HasSubstr("Error writing the user defaults")));
}

TEST_F(UserDefaultsOfATest, InAFolderThatMustNotBeWrittenAreReadAndOneLineForAWrite) {
    defaults.setObject("x", "key");
    std::filesystem::permissions(folder.path(), std::filesystem::perms(0755));
    std::filesystem::permissions(defaults.folder(), std::filesystem::perms(0555));
    std::filesystem::permissions(defaultsFile(), std::filesystem::perms(0444));
    const testing::Outcome outcome =
        testing::probe({"--ordinary", "set", defaults.folder(), "key", "y"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, "x\n");
    EXPECT_THAT(outcome.errors, AllOf(HasSubstr("Error writing the user defaults"),
                                      HasSubstr("Permission denied")));
    EXPECT_EQ(std::count(outcome.errors.begin(), outcome.errors.end(), '\n'), 1);
}

TEST_F(UserDefaultsOfATest, ThatMustNotBeReadAreNotReplaced) {
    defaults.setObject("x", "key");
    std::filesystem::permissions(folder.path(), std::filesystem::perms(0755));
    std::filesystem::permissions(defaults.folder(), std::filesystem::perms(0777));
    std::filesystem::permissions(defaultsFile("defaults.lock"), std::filesystem::perms(0666));
    std::filesystem::permissions(defaultsFile(), std::filesystem::perms(0000));
    const testing::Outcome outcome =
        testing::probe({"--ordinary", "set", defaults.folder(), "key", "y"});
    EXPECT_EQ(outcome.status, 0);
    if (::geteuid() == 0) {
        EXPECT_EQ(defaults.stringForKey("key"), "x");
    }
    EXPECT_THAT(outcome.errors, AllOf(HasSubstr("Error writing"), HasSubstr("Error reading")));
}

TEST_F(UserDefaultsOfATest, OnAFullDiskStayAsTheyWereAndOneLineIsLogged) {
    defaults.setObject("x", "key");
    const testing::Outcome outcome =
        testing::run(PELLUVIA_STORAGE_PROBE,
                     {.arguments = {"set", defaults.folder(), "key", std::string(5000, 'y')},
                      .fileSizeLimit = 1000});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, "x\n");
    EXPECT_THAT(outcome.errors, HasSubstr("Error writing the user defaults"));
    EXPECT_EQ(std::count(outcome.errors.begin(), outcome.errors.end(), '\n'), 1);
    EXPECT_THAT(filesIn(defaults.folder()), ElementsAre("defaults.ini", "defaults.lock"));
    EXPECT_EQ(defaults.stringForKey("key"), "x");
}

TEST_F(UserDefaultsOfATest, MayBeUsedByWhoTakesTheLogsLines) {
    defaults.setObject("x", "key");
    testing::writeFile(defaultsFile(), "damage");
    std::string seen;
    setLogSink([&](std::string_view line) {
        defaults.setObject(std::string(line), "line");
        seen = line;
    });
    EXPECT_EQ(defaults.stringForKey("key"), std::nullopt);
    EXPECT_EQ(defaults.stringForKey("line"), seen);
    EXPECT_THAT(seen, HasSubstr("damaged"));
}

std::string keyOf(int thread, int at) {
    return std::to_string(thread).append(":").append(std::to_string(at));
}

TEST_F(UserDefaultsOfATest, OfManyThreadsLoseNothing) {
    constexpr int threadCount = 8;
    constexpr int each = 25;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < threadCount; ++thread) {
        threads.emplace_back([this, thread] {
            for (int at = 0; at < each; ++at) {
                const std::string key = keyOf(thread, at);
                defaults.setObject(std::int64_t{at}, key);
                EXPECT_EQ(defaults.integerForKey(key), at);
                UserDefaults::setApplicationIdentifier("org.example.Test");
            }
        });
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
    for (int thread = 0; thread < threadCount; ++thread) {
        for (int at = 0; at < each; ++at) {
            EXPECT_EQ(defaults.integerForKey(keyOf(thread, at)), at);
        }
    }
    EXPECT_THAT(log.lines, IsEmpty());
}

} // namespace
} // namespace pelluvia
