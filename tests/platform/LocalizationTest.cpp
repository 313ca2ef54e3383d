#include <Pelluvia/platform/Localization.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <libintl.h>
#include <map>
#include <string>
#include <tests/support/MadeLocale.h>
#include <tests/support/TemporaryFolder.h>

namespace pelluvia {
namespace {

/// A message catalogue in the binary form that gettext reads (in the byte order of this machine):
/// a head of seven numbers, for each text its length and place, the same for the translations, and
/// the texts themselves, each closed by a NUL and sorted.
std::string catalogue(const std::map<std::string, std::string> &translations) {
    const auto count = static_cast<std::uint32_t>(translations.size());
    const std::uint32_t head = 28;
    const std::uint32_t table = 8 * count;
    std::string texts;
    std::string tables[2];
    const auto number = [](std::string &target, std::size_t value) {
        const auto narrow = static_cast<std::uint32_t>(value);
        target.append(reinterpret_cast<const char *>(&narrow), sizeof narrow); // NOLINT
    };
    const auto add = [&](std::string &target, const std::string &text) {
        number(target, text.size());
        number(target, head + 2 * table + texts.size());
        texts += text + '\0';
    };
    for (const auto &[text, translation] : translations) {
        add(tables[0], text);
        add(tables[1], translation);
    }
    std::string file;
    for (const std::uint32_t value :
         {0x950412DEU, 0U, count, head, head + table, 0U, head + 2 * table}) {
        number(file, value);
    }
    return file + tables[0] + tables[1] + texts;
}

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
        testing::writeFile(messages / "Pelluvia.mo", catalogue(german));
        testing::writeFile(messages / "host.mo", catalogue({{"Open", "\xC3\x96"
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
