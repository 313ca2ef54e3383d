// SPDX-License-Identifier: MIT

#include <Pelluvia/storage/Bookmark.h>

#include <tests/storage/BookmarkTexts.h>
#include <tests/storage/Probe.h>

#include <Pelluvia/values/CocoaErrors.h>

#include <cstdlib>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <tests/support/TemporaryFolder.h>
#include <unistd.h>

namespace pelluvia {
namespace {

using ::testing::HasSubstr;

class BookmarkOfAFolder : public ::testing::Test {
  protected:
    BookmarkOfAFolder() {
        std::filesystem::create_directories(path);
        // A runtime folder of its own, with a document store in it.
        ::setenv("XDG_RUNTIME_DIR", folder.file("run").c_str(), 1); // NOLINT(concurrency-mt-unsafe)
    }

    Data make(const std::string &of) {
        const auto data = Bookmark::bookmarkData(URL::fileURLWithPath(of), &error);
        EXPECT_TRUE(data) << (error != nullptr ? error->localizedDescription() : "");
        return data.value_or(Data());
    }
    std::string resolve(const Data &data) {
        const auto url = Bookmark::URLByResolvingBookmarkData(data, &isStale, &error);
        EXPECT_EQ(error == nullptr, url.has_value());
        return url ? url->path() : "nothing";
    }
    void expectError(std::int64_t code, const std::string &text) const {
        ASSERT_NE(error, nullptr);
        EXPECT_EQ(error->domain(), NSCocoaErrorDomain);
        EXPECT_EQ(error->code(), code);
        EXPECT_THAT(error->localizedDescription(), HasSubstr(text));
    }

    testing::TemporaryFolder folder;
    std::string path = folder.file("GPS");
    ErrorPtr error;
    bool isStale = false;
};

TEST_F(BookmarkOfAFolder, ResolvesToTheFolder) {
    const Data data = make(path);
    isStale = true;
    EXPECT_EQ(resolve(data), path);
    EXPECT_FALSE(isStale);
    EXPECT_EQ(Bookmark::URLByResolvingBookmarkData(data, nullptr, nullptr)->path(), path);
}

TEST_F(BookmarkOfAFolder, OfAnyNameResolves) {
    for (const std::string &name :
         {std::string("with space"), std::string("100%"), std::string("a\nb"), std::string("\xFF"),
          std::string("\xC3\xA4"), std::string("a?b#c"), std::string(255, 'x')}) {
        std::filesystem::create_directory(folder.file(name));
        EXPECT_EQ(resolve(make(folder.file(name))), folder.file(name));
    }
    EXPECT_EQ(resolve(make("/")), "/");
}

TEST_F(BookmarkOfAFolder, IsMadeOfTheFolderThatALinkLeadsTo) {
    std::filesystem::create_directory_symlink("GPS", folder.file("link"));
    EXPECT_EQ(resolve(make(folder.file("link"))), path);
    EXPECT_EQ(resolve(make(folder.file("link") + "/../GPS/")), path);
}

TEST_F(BookmarkOfAFolder, ThatWasRenamedIsFoundAgainAndIsStale) {
    const Data data = make(path);
    std::filesystem::rename(path, folder.file("old"));
    EXPECT_EQ(resolve(data), folder.file("old"));
    EXPECT_TRUE(isStale);
    std::filesystem::create_directory(path);
    EXPECT_EQ(resolve(data), folder.file("old"));
    testing::writeFile(folder.file("GPS/file"), "");
    std::filesystem::remove_all(path);
    testing::writeFile(path, "");
    EXPECT_EQ(resolve(data), folder.file("old"));
}

TEST_F(BookmarkOfAFolder, WhoseParentWasRenamedIsFoundAgain) {
    std::filesystem::create_directories(folder.file("GPS/2024"));
    const Data data = make(folder.file("GPS/2024"));
    std::filesystem::rename(path, folder.file("old"));
    EXPECT_EQ(resolve(data), folder.file("old/2024"));
    EXPECT_TRUE(isStale);
}

TEST_F(BookmarkOfAFolder, AnotherOneInItsPlaceIsNotGranted) {
    const Data data = make(path);
    std::filesystem::create_directories(folder.file("far/away"));
    std::filesystem::rename(path, folder.file("far/away/GPS")); // where nobody looks
    std::filesystem::create_directory(path);
    std::filesystem::create_directory(folder.file("neighbour"));
    EXPECT_EQ(resolve(data), "nothing");
    expectError(NSFileReadNoSuchFileError, "Another folder is in its place: " + path);
    std::filesystem::remove(path);
    EXPECT_EQ(resolve(data), "nothing");
    expectError(NSFileReadNoSuchFileError, "The folder is gone: " + path);
}

TEST_F(BookmarkOfAFolder, IsNotFoundAgainByWayOfALink) {
    std::filesystem::create_directories(folder.file("far/away"));
    const Data data = make(path);
    std::filesystem::rename(path, folder.file("far/away/GPS"));
    std::filesystem::create_directory_symlink("far/away/GPS", folder.file("link"));
    EXPECT_EQ(resolve(data), "nothing");
}

TEST_F(BookmarkOfAFolder, ThatIsGoneDoesNotResolve) {
    const Data data = make(path);
    std::filesystem::remove(path);
    EXPECT_EQ(resolve(data), "nothing");
    expectError(NSFileReadNoSuchFileError, "The folder is gone: " + path);
}

TEST_F(BookmarkOfAFolder, ThatHasBecomeAFileDoesNotResolve) {
    const Data data = make(path);
    std::filesystem::remove(path);
    testing::writeFile(path, "");
    EXPECT_EQ(resolve(data), "nothing");
    expectError(NSFileReadUnknownError, "Not a folder");
}

TEST_F(BookmarkOfAFolder, ASymbolicLinkSwappedInLaterIsRefused) {
    std::filesystem::create_directories(folder.file("GPS/2024"));
    const Data data = make(folder.file("GPS/2024"));
    std::filesystem::rename(path, folder.file("moved"));
    std::filesystem::create_directory_symlink("moved", path);
    EXPECT_EQ(resolve(data), "nothing"); // though it is the very folder: no link is followed
    expectError(NSFileReadUnknownError, "symbolic link");
    std::filesystem::remove(path);
    std::filesystem::create_directory(path);
    std::filesystem::create_directory_symlink("/etc", folder.file("GPS/2024"));
    EXPECT_EQ(resolve(data), "nothing");
    expectError(NSFileReadUnknownError, "symbolic link");
}

TEST_F(BookmarkOfAFolder, EditedIntoSomethingRelativeIsRefused) {
    for (const std::string &uri :
         {"file://" + path + "/../../etc", "file://" + path + "/..", "file://" + path + "/%2E%2E",
          "file://" + path + "/./", std::string("file:///../etc"), "file:///" + path}) {
        EXPECT_EQ(resolve(testing::bookmarkWith("folder " + uri + "\ndevice 1\ninode 1\n")),
                  "nothing")
            << uri;
        expectError(NSFileReadInvalidFileNameError, "Not an absolute path");
    }
    for (const char *uri : {"GPS", "file:GPS", "../GPS", ""}) {
        EXPECT_EQ(
            resolve(testing::bookmarkWith("folder " + std::string(uri) + "\ndevice 1\ninode 1\n")),
            "nothing")
            << uri;
    }
}

TEST_F(BookmarkOfAFolder, DamagedDataGiveAnErrorWithTheReason) {
    Data data = make(path);
    EXPECT_EQ(resolve({}), "nothing");
    expectError(NSFileReadCorruptFileError, "There is no bookmark");
    data[data.size() / 2] ^= 1U;
    EXPECT_EQ(resolve(data), "nothing");
    expectError(NSFileReadCorruptFileError, "damaged");
}

TEST_F(BookmarkOfAFolder, IsNotMadeOfWhatCannotBeResolved) {
    const auto expectNone = [this](const std::string &of, std::int64_t code) {
        EXPECT_FALSE(Bookmark::bookmarkData(URL::fileURLWithPath(of), &error)) << of;
        expectError(code, "");
    };
    expectNone(folder.file("missing"), NSFileReadNoSuchFileError);
    expectNone(folder.write("file", ""), NSFileReadUnknownError);
    expectNone("", NSFileReadInvalidFileNameError);
    expectNone(path + std::string(1, '\0'), NSFileReadInvalidFileNameError);
    expectNone("/" + std::string(100'000, 'x'), NSFileReadUnknownError);
    std::filesystem::create_directory_symlink("nowhere", folder.file("dangling"));
    expectNone(folder.file("dangling"), NSFileReadUnknownError);
    EXPECT_FALSE(Bookmark::bookmarkData(URL::fileURLWithPath(""), nullptr));
}

TEST_F(BookmarkOfAFolder, ThatCannotBeReadDoesNotResolve) {
    std::filesystem::permissions(folder.path(), std::filesystem::perms(0755));
    const Data data = make(path);
    for (const unsigned mode : {0U, 0444U, 0111U}) {
        std::filesystem::permissions(path, std::filesystem::perms(mode));
        const testing::Outcome outcome =
            testing::probe({"--ordinary", "bookmark", testing::textOf(data)});
        EXPECT_EQ(outcome.output, "nothing: 257 The folder cannot be read: " + path + "\n") << mode;
    }
    std::filesystem::permissions(path, std::filesystem::perms(0755));
    EXPECT_EQ(testing::probe({"--ordinary", "bookmark", testing::textOf(data)}).output,
              path + "\n");
}

TEST_F(BookmarkOfAFolder, InTheDocumentStoreIsFoundByItsIdentifier) {
    const std::string document = folder.file("run/doc/3f0a/GPS");
    std::filesystem::create_directories(document);
    const Data data = make(document);
    EXPECT_THAT(testing::textOf(data), HasSubstr("\ndocument 3f0a\n"));
    EXPECT_EQ(resolve(data), document);
    EXPECT_FALSE(isStale);

    // The store is mounted elsewhere in the next session; the old place still holds something.
    const std::string later = folder.file("later/doc/3f0a/GPS");
    std::filesystem::create_directories(later);
    ::setenv("XDG_RUNTIME_DIR", folder.file("later").c_str(), 1); // NOLINT(concurrency-mt-unsafe)
    EXPECT_EQ(resolve(data), later);
    EXPECT_TRUE(isStale);

    // Without the store the URI is all there is.
    std::filesystem::remove_all(folder.file("later"));
    EXPECT_EQ(resolve(data), document);
    std::filesystem::remove_all(folder.file("run"));
    EXPECT_EQ(resolve(data), "nothing");
    expectError(NSFileReadNoSuchFileError, "gone");
}

TEST_F(BookmarkOfAFolder, InTheDocumentStoreIsFoundThroughALinkToTheRuntimeFolder) {
    std::filesystem::create_directories(folder.file("run/doc/3f0a/GPS"));
    std::filesystem::create_directory_symlink("run", folder.file("link"));
    ::setenv("XDG_RUNTIME_DIR", folder.file("link").c_str(), 1); // NOLINT(concurrency-mt-unsafe)
    const Data data = make(folder.file("link/doc/3f0a/GPS"));
    EXPECT_THAT(testing::textOf(data), HasSubstr("\ndocument 3f0a\n"));

    std::filesystem::rename(folder.file("run"), folder.file("later"));
    std::filesystem::remove(folder.file("link"));
    std::filesystem::create_directory_symlink("later", folder.file("link"));
    EXPECT_EQ(resolve(data), folder.file("later/doc/3f0a/GPS"));
}

TEST_F(BookmarkOfAFolder, TheDocumentStoreIsNotLeftByALink) {
    std::filesystem::create_directories(folder.file("run/doc/3f0a"));
    std::filesystem::create_directory_symlink("/etc", folder.file("run/doc/3f0a/GPS"));
    std::string fields = testing::textOf(make(path));
    fields = fields.substr(fields.find('\n') + 1);
    fields = fields.substr(0, fields.find("sum ")) + "document ";
    EXPECT_EQ(resolve(testing::bookmarkWith(fields + "3f0a\n")), path);
    EXPECT_EQ(resolve(testing::bookmarkWith(fields + "../..\n")), path);
}

} // namespace
} // namespace pelluvia
