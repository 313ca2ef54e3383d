// SPDX-License-Identifier: MIT

#include <Pelluvia/storage/GPSStorageAuthorization.h>

#include <tests/storage/OwnDefaults.h>

#include <Pelluvia/model/ErrorDomains.h>
#include <Pelluvia/storage/Bookmark.h>
#include <Pelluvia/storage/internal/Grant.h>
#include <Pelluvia/values/CocoaErrors.h>

#include <filesystem>
#include <gmock/gmock.h>
#include <libintl.h>
#include <map>
#include <tests/support/MadeLocale.h>
#include <tests/support/MessageCatalogue.h>
#include <thread>
#include <vector>

namespace pelluvia {
namespace {

using Authorization = GPSStorageAuthorization;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::StartsWith;

class GPSStorageAuthorizationOfATest : public testing::OwnDefaults {
  protected:
    GPSStorageAuthorizationOfATest() { std::filesystem::create_directory(granted); }

    Data bookmark() const {
        return Bookmark::bookmarkData(URL::fileURLWithPath(granted), nullptr).value_or(Data());
    }
    static std::string resolve(std::optional<std::string_view> path, ErrorPtr *error = nullptr) {
        const auto url = Authorization::authorizedBookmarkURLForPath(path, error);
        return url ? url->path() : "nothing";
    }

    static std::string lineOf(int code, const std::string &text) {
        return "Error resolving bookmark: Error Domain=NSCocoaErrorDomain Code=" +
               std::to_string(code) + " \"" + text + "\"";
    }

    std::string granted = folder.file("GPS");
};

TEST_F(GPSStorageAuthorizationOfATest, TheKeyIsTheClassAndThePathAsGiven) {
    EXPECT_EQ(Authorization::authorizedBookmarkKeyForPath("/Users/x/GPS"),
              "GPSStorageAuthorization:/Users/x/GPS");
    EXPECT_EQ(Authorization::authorizedBookmarkKeyForPath("/Users/x/GPS/"),
              "GPSStorageAuthorization:/Users/x/GPS/");
    EXPECT_EQ(Authorization::authorizedBookmarkKeyForPath("~/gps/../GPS"),
              "GPSStorageAuthorization:~/gps/../GPS");
    EXPECT_EQ(Authorization::authorizedBookmarkKeyForPath(""), "GPSStorageAuthorization:");
    EXPECT_EQ(Authorization::authorizedBookmarkKeyForPath("/a", "MyAuthorization"),
              "MyAuthorization:/a");
    EXPECT_EQ(Authorization::authorizedBookmarkKeyForPath(std::nullopt), std::nullopt);
}

TEST_F(GPSStorageAuthorizationOfATest, AGrantResolvesToItsFolder) {
    Authorization::setAuthorizedBookmarkData(bookmark(), "/Users/x/GPS");
    EXPECT_EQ(resolve("/Users/x/GPS"), granted);
    EXPECT_EQ(
        UserDefaults::standardUserDefaults().dataForKey("GPSStorageAuthorization:/Users/x/GPS"),
        bookmark());
    EXPECT_THAT(log.lines, IsEmpty());
}

TEST_F(GPSStorageAuthorizationOfATest, AnotherSpellingHasNoGrant) {
    Authorization::setAuthorizedBookmarkData(bookmark(), "/Users/x/GPS");
    EXPECT_EQ(resolve("/Users/x/GPS/"), "nothing");
    EXPECT_EQ(resolve("/users/x/gps"), "nothing");
}

TEST_F(GPSStorageAuthorizationOfATest, ALaterGrantTakesThePlaceOfAnEarlierOne) {
    const std::string other = folder.file("other");
    std::filesystem::create_directory(other);
    Authorization::setAuthorizedBookmarkData(bookmark(), "/GPS");
    Authorization::setAuthorizedBookmarkData(
        *Bookmark::bookmarkData(URL::fileURLWithPath(other), nullptr), "/GPS");
    EXPECT_EQ(resolve("/GPS"), other);
}

TEST_F(GPSStorageAuthorizationOfATest, WithoutAGrantTheErrorIsLeftAsItWas) {
    const ErrorPtr before = Error::make("mine", 7);
    ErrorPtr error = before;
    EXPECT_EQ(resolve("/never/stored", &error), "nothing");
    EXPECT_EQ(error, before);
    EXPECT_EQ(resolve("/never/stored", nullptr), "nothing");
    EXPECT_THAT(log.lines, ElementsAre(lineOf(259, "There is no bookmark"),
                                       lineOf(259, "There is no bookmark")));
}

TEST_F(GPSStorageAuthorizationOfATest, AGrantThatDoesNotResolveLeavesTheErrorAsItWas) {
    ErrorPtr error;
    Authorization::setAuthorizedBookmarkData(bookmark(), "/gone");
    Authorization::setAuthorizedBookmarkData(Data{1, 2, 3}, "/damaged"); // kept without a look
    UserDefaults::standardUserDefaults().setObject("text", "GPSStorageAuthorization:/text");
    std::filesystem::remove(granted);
    EXPECT_EQ(resolve("/gone", &error), "nothing");
    EXPECT_EQ(resolve("/damaged", &error), "nothing");
    EXPECT_EQ(resolve("/text", &error), "nothing");
    EXPECT_EQ(error, nullptr);
    EXPECT_THAT(log.lines, ElementsAre(lineOf(260, "The folder is gone: " + granted),
                                       lineOf(259, "This is not a bookmark"),
                                       lineOf(259, "There is no bookmark")));
}

TEST_F(GPSStorageAuthorizationOfATest, TheErrorKeptBackHasThePublishedText) {
    const Grant grant = grantUnderKey("GPSStorageAuthorization:/never/stored");
    ASSERT_NE(grant.error, nullptr);
    EXPECT_FALSE(grant.url);
    EXPECT_EQ(grant.error->domain(), "com.Quorvel.GPSPlugin.ErrorDomain");
    EXPECT_EQ(grant.error->code(), -1);
    EXPECT_EQ(grant.error->userInfo().size(), 2U);
    EXPECT_EQ(grant.error->localizedDescription(), "Unable to Resolve bookmarkauthorization path");
    ASSERT_NE(grant.error->underlyingError(), nullptr);
    EXPECT_EQ(grant.error->underlyingError()->domain(), NSCocoaErrorDomain);
}

TEST_F(GPSStorageAuthorizationOfATest, WithoutAPathThereIsNoKeyAndAnError) {
    ErrorPtr error;
    EXPECT_EQ(resolve(std::nullopt, &error), "nothing");
    ASSERT_NE(error, nullptr);
    EXPECT_EQ(error->domain(), "com.Quorvel.GPSPlugin.ErrorDomain");
    EXPECT_EQ(error->code(), -1);
    EXPECT_EQ(error->userInfo().size(), 1U);
    EXPECT_EQ(error->localizedDescription(), "Unable to create key for authorization path");
    EXPECT_EQ(resolve(std::nullopt, nullptr), "nothing");
    EXPECT_TRUE(Authorization::setAuthorizedBookmarkData(bookmark(), std::nullopt));
    EXPECT_FALSE(std::filesystem::exists(defaultsFile()));
    EXPECT_THAT(log.lines, IsEmpty());
}

TEST_F(GPSStorageAuthorizationOfATest, AStaleGrantResolvesAndIsNotRewritten) {
    Authorization::setAuthorizedBookmarkData(bookmark(), "/GPS");
    std::filesystem::rename(granted, folder.file("old"));
    const std::string before = testing::readFile(defaultsFile());
    EXPECT_EQ(resolve("/GPS"), folder.file("old"));
    EXPECT_EQ(testing::readFile(defaultsFile()), before);
    EXPECT_THAT(log.lines, IsEmpty());
}

TEST_F(GPSStorageAuthorizationOfATest, AnotherFolderInThePlaceOfTheGrantedOneIsNotGranted) {
    const ErrorPtr untouched = Error::make("mine", 7);
    ErrorPtr error = untouched;
    Authorization::setAuthorizedBookmarkData(bookmark(), "/GPS");
    std::filesystem::create_directories(folder.file("far/away"));
    std::filesystem::rename(granted, folder.file("far/away/GPS"));
    std::filesystem::create_directory(granted);
    EXPECT_EQ(resolve("/GPS", &error), "nothing");
    EXPECT_EQ(error, untouched);
    EXPECT_THAT(log.lines, ElementsAre(lineOf(260, "Another folder is in its place: " + granted)));
}

TEST_F(GPSStorageAuthorizationOfATest, OddPathsEachKeepTheirOwnGrant) {
    const std::vector<std::string> paths = {"",
                                            " ",
                                            "a\nb",
                                            "a=b",
                                            "[a]",
                                            "a:b",
                                            "\xFF\xFE",
                                            std::string("a\0b", 3),
                                            std::string(100'000, '/'),
                                            std::string(100'000, '=')};
    for (std::size_t at = 0; at < paths.size(); ++at) {
        const std::string target = folder.file("folder " + std::to_string(at));
        std::filesystem::create_directory(target);
        Authorization::setAuthorizedBookmarkData(
            *Bookmark::bookmarkData(URL::fileURLWithPath(target), nullptr), paths[at]);
    }
    for (std::size_t at = 0; at < paths.size(); ++at) {
        EXPECT_EQ(resolve(paths[at]), folder.file("folder " + std::to_string(at)));
    }
}

TEST_F(GPSStorageAuthorizationOfATest, AClassOfAHostsOwnHasGrantsOfItsOwn) {
    Authorization::setAuthorizedBookmarkData(bookmark(), "/GPS", "MyAuthorization");
    EXPECT_EQ(resolve("/GPS"), "nothing");
    EXPECT_EQ(
        Authorization::authorizedBookmarkURLForPath("/GPS", nullptr, "MyAuthorization")->path(),
        granted);
}

TEST_F(GPSStorageAuthorizationOfATest, MayBeUsedFromAnyThread) {
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 8; ++thread) {
        threads.emplace_back([this, path = std::string("/").append(std::to_string(thread))] {
            for (int at = 0; at < 10; ++at) {
                Authorization::setAuthorizedBookmarkData(bookmark(), path);
                EXPECT_EQ(resolve(path), granted);
            }
        });
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
    EXPECT_THAT(log.lines, IsEmpty());
}

TEST_F(GPSStorageAuthorizationOfATest, ErrorTextsAreInTheLanguageOfTheMainProgram) {
    testing::MadeLocale german("UTF-8");
    if (!german.isInUse()) {
        GTEST_SKIP() << "the locale cannot be made";
    }
    const auto messages = folder.path() / "de" / "LC_MESSAGES";
    std::filesystem::create_directories(messages);
    const std::map<std::string, std::string> texts = {
        {"", "Content-Type: text/plain; charset=UTF-8\n"},
        {"Unable to Resolve bookmarkauthorization path", "Kein Lesezeichen"},
        {"Unable to create key for authorization path", "Kein Schl\xC3\xBCssel"}};
    testing::writeFile(messages / "host.mo", testing::messageCatalogue(texts));
    ::unsetenv("LANGUAGE"); // NOLINT(concurrency-mt-unsafe)
    ::bindtextdomain("host", folder.path().c_str());
    ::bind_textdomain_codeset("host", "UTF-8");
    ::textdomain("host");
    ErrorPtr error;
    EXPECT_EQ(resolve(std::nullopt, &error), "nothing");
    EXPECT_EQ(error->localizedDescription(), "Kein Schl\xC3\xBCssel");
    EXPECT_EQ(grantUnderKey("").error->localizedDescription(), "Kein Lesezeichen");
    ::textdomain("messages");
}

} // namespace
} // namespace pelluvia
