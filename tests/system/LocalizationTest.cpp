// SPDX-License-Identifier: MIT

#include <Pelluvia/system/Localization.h>

#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <libintl.h>
#include <map>
#include <string>
#include <tests/support/MadeLocale.h>
#include <tests/support/MessageCatalogue.h>
#include <tests/support/TemporaryFolder.h>

namespace pelluvia {
namespace {

const std::map<std::string, std::string> german = {
    {"", "Content-Type: text/plain; charset=UTF-8\n"},
    {"Try a different file", "Bitte eine andere Datei w\xC3\xA4hlen"},
};

/// A folder with a German catalogue for the framework and one for a host.
class Catalogues {
  public:
    Catalogues() {
        const auto messages = folder_.path() / "de" / "LC_MESSAGES";
        std::filesystem::create_directories(messages);
        testing::writeFile(messages / "Pelluvia.mo", testing::messageCatalogue(german));
        testing::writeFile(messages / "host.mo", testing::messageCatalogue({{"Open", "\xC3\x96"
                                                                                     "ffnen"}}));
        ::unsetenv("LANGUAGE"); // NOLINT(concurrency-mt-unsafe)
        ::bindtextdomain(frameworkTextDomain, folder_.path().c_str());
        ::bindtextdomain("host", folder_.path().c_str());
    }

  private:
    testing::TemporaryFolder folder_;
};

TEST(Localization, GivesTheEnglishTextWithoutACatalogue) {
    EXPECT_EQ(localized("Try a different file"), "Try a different file");
    EXPECT_EQ(localized("Try a different file", "no such domain"), "Try a different file");
    EXPECT_EQ(localized("Try a different file", nullptr), "Try a different file");
    EXPECT_EQ(localized("100 % \xC3\xA4"), "100 % \xC3\xA4");
}

TEST(Localization, GivesTextsBackWhole) {
    const std::string withNul("cut\0here", 8);
    EXPECT_EQ(localized(withNul), withNul);
    EXPECT_EQ(localized(std::string_view("longer text").substr(0, 6)), "longer");
    EXPECT_EQ(localized(""), "");
}

TEST(Localization, TranslatesIntoTheLanguageOfTheHost) {
    const Catalogues catalogues;
    const testing::MadeLocale locale("UTF-8");
    if (!locale.isInUse()) {
        GTEST_SKIP() << "localedef or its sources are missing";
    }
    EXPECT_EQ(localized("Try a different file"), "Bitte eine andere Datei w\xC3\xA4hlen");
    EXPECT_EQ(localized("Another text"), "Another text");
    EXPECT_EQ(localized(""), ""); // not the head of the catalogue
    EXPECT_EQ(localized("Open", "host"), "\xC3\x96"
                                         "ffnen");
    EXPECT_EQ(localized("Open"), "Open");
}

TEST(Localization, GivesUTF8WhereTheLocaleHasAnotherEncoding) {
    const Catalogues catalogues;
    const testing::MadeLocale locale("ISO-8859-1");
    if (!locale.isInUse()) {
        GTEST_SKIP() << "localedef or its sources are missing";
    }
    EXPECT_EQ(localized("Try a different file"), "Bitte eine andere Datei w\xC3\xA4hlen");
}

} // namespace
} // namespace pelluvia
