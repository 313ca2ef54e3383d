// SPDX-License-Identifier: MIT

#include <Pelluvia/storage/internal/DocumentStore.h>

#include <cstdlib>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>

namespace pelluvia::storage {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::string usualPlace() {
    return "/run/user/" + std::to_string(::getuid()) + "/doc/";
}

void setRuntimeFolder(const char *folder) {
    ::setenv("XDG_RUNTIME_DIR", folder, 1); // NOLINT(concurrency-mt-unsafe)
}

TEST(DocumentStore, IsInTheRuntimeFolder) {
    setRuntimeFolder("/sandbox/run");
    for (const std::string &mount : {std::string("/sandbox/run/doc/"), usualPlace()}) {
        const auto document = documentAt(mount + "3f0a/GPS tracks");
        ASSERT_TRUE(document) << mount;
        EXPECT_EQ(document->identifier, "3f0a");
        EXPECT_EQ(document->name, "GPS tracks");
    }
    EXPECT_THAT(placesOf({"3f0a", "GPS"}),
                ElementsAre("/sandbox/run/doc/3f0a/GPS", usualPlace() + "3f0a/GPS"));
}

TEST(DocumentStore, IsWhereItUsuallyIsWithoutARuntimeFolder) {
    ::unsetenv("XDG_RUNTIME_DIR"); // NOLINT(concurrency-mt-unsafe)
    EXPECT_THAT(placesOf({"a", "b"}), ElementsAre(usualPlace() + "a/b"));
    setRuntimeFolder("relative");
    EXPECT_THAT(placesOf({"a", "b"}), ElementsAre(usualPlace() + "a/b"));
}

TEST(DocumentStore, HasNoOtherPaths) {
    setRuntimeFolder("/sandbox/run");
    for (const char *path :
         {"", "/", "/home/me/GPS", "/sandbox/run/doc", "/sandbox/run/doc/", "/sandbox/run/doc/3f0a",
          "/sandbox/run/doc/3f0a/", "/sandbox/run/doc/3f0a/a/b", "/sandbox/run/doc/../GPS",
          "/sandbox/run/doc/3f0a/..", "/sandbox/run/doc/3\nf/GPS", "/sandbox/run/docs/3f0a/GPS"}) {
        EXPECT_FALSE(documentAt(path)) << path;
    }
}

TEST(DocumentStore, AnEditedIdentifierLeadsNowhereElse) {
    for (const char *identifier : {"", ".", "..", "../../etc", "a/b", "/"}) {
        EXPECT_THAT(placesOf({identifier, "GPS"}), IsEmpty()) << identifier;
        EXPECT_THAT(placesOf({"3f0a", identifier}), IsEmpty()) << identifier;
    }
}

} // namespace
} // namespace pelluvia::storage
