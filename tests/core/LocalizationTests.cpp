#include "core/Localization.h"

#include "tests/support/TemporaryFolder.h"

#include <cstdint>
#include <cstdlib>
#include <gtest/gtest.h>
#include <map>
#include <random>

namespace murkwell {
namespace {

// The catalogues that are built beside the programs.
const std::filesystem::path builtCatalogues = MURKWELL_CATALOGUES;

std::optional<Catalogue> built(const std::string& language) {
    return findCatalogue(builtCatalogues, std::vector{language});
}

// Each test leaves the English keys behind.
class Localization : public testing::Test {
protected:
    ~Localization() override { useCatalogue(std::nullopt); }
};

// A compiled catalogue, put together by its published layout.
std::string compiled(const std::map<std::string, std::string>& texts, bool bigEndian) {
    const auto number = [&](std::size_t value) {
        std::string bytes;
        for (int i = 0; i < 4; ++i) {
            bytes.push_back(static_cast<char>(value >> (bigEndian ? 24 - 8 * i : 8 * i) & 0xFF));
        }
        return bytes;
    };
    const std::size_t tables = 28;
    const std::size_t count = texts.size();
    std::string english;
    std::string translated;
    std::string content;
    for (const auto& [key, value] : texts) {
        english += number(key.size()) + number(tables + 16 * count + content.size());
        content += key + '\0';
        translated += number(value.size()) + number(tables + 16 * count + content.size());
        content += value + '\0';
    }
    return number(0x950412de) + number(0) + number(count) + number(tables) +
           number(tables + 8 * count) + number(0) + number(0) + english + translated + content;
}

TEST_F(Localization, WithoutACatalogueTheEnglishTextIsShown) {
    EXPECT_EQ(localized("Noise"), "Noise");
    EXPECT_EQ(localized("Saved %@", {"a.pdf"}), "Saved a.pdf");
}

TEST_F(Localization, EachPlaceholderTakesOneArgumentOnce) {
    EXPECT_EQ(localized("%d of %d", {3, std::size_t{12}}), "3 of 12");
    EXPECT_EQ(localized("“%@”.", {"100%d %@.pdf"}), "“100%d %@.pdf”.");
    EXPECT_EQ(localized("%@ and %@", {"one"}), "one and %@");
    EXPECT_EQ(localized("100 % sure%", {1}), "100 % sure%");
    EXPECT_EQ(localized("%d", {INT64_MIN}), "-9223372036854775808");
}

TEST_F(Localization, CataloguesOfEitherByteOrderAreRead) {
    const TemporaryFolder folder;
    for (const bool bigEndian : {false, true}) {
        const auto catalogue = Catalogue::load(folder.write(
            "a.mo",
            compiled({{"", "header"}, {"Red", "Rot"}, {"Blue", "Blau"}, {"New", ""}}, bigEndian)));
        ASSERT_TRUE(catalogue);
        EXPECT_EQ(catalogue->find("Red"), "Rot");
        EXPECT_EQ(catalogue->find("Blue"), "Blau");
        EXPECT_EQ(catalogue->find("New"), std::nullopt);
        EXPECT_EQ(catalogue->find("Green"), std::nullopt);
        EXPECT_EQ(catalogue->find(""), std::nullopt);
    }
}

TEST_F(Localization, ADamagedCatalogueIsNoneOrHarmless) {
    const TemporaryFolder folder;
    const std::string whole = compiled({{"", "header"}, {"Red", "Rot"}, {"Blue", "Blau"}}, false);
    for (std::size_t length = 0; length < whole.size(); ++length) {
        const auto catalogue = Catalogue::load(folder.write("a.mo", whole.substr(0, length)));
        EXPECT_TRUE(!catalogue || length + 1 == whole.size()) << length;
    }
    std::mt19937 generator(1);
    for (int i = 0; i < 2000; ++i) {
        std::string damaged = whole;
        damaged[4 + generator() % (damaged.size() - 4)] = static_cast<char>(generator());
        if (const auto catalogue = Catalogue::load(folder.write("a.mo", damaged))) {
            (void)catalogue->find("Red");
        }
    }
    EXPECT_FALSE(Catalogue::load(folder / "missing.mo"));
    EXPECT_FALSE(Catalogue::load(folder.path));
}

TEST_F(Localization, TheLanguagesAreThoseOfTheEnvironment) {
    struct Case {
        const char *language, *all, *messages, *lang;
        std::vector<std::string> expected;
    };
    for (const Case& each : std::vector<Case>{
             {"", "", "", "", {"en"}},
             {"", "", "", "de_AT.UTF-8", {"de_AT.UTF-8", "en"}},
             {"", "", "fr_FR", "de_AT.UTF-8", {"fr_FR", "en"}},
             {"", "es_ES", "fr_FR", "de_AT.UTF-8", {"es_ES", "en"}},
             {"fr:es", "", "", "de_DE", {"fr", "es", "de_DE", "en"}},
             {":fr::", "", "", "de_DE", {"fr", "de_DE", "en"}},
             {"fr", "C.UTF-8", "", "de_DE", {"en"}},
             {"fr", "", "", "POSIX", {"en"}},
         }) {
        ::setenv("LANGUAGE", each.language, 1);
        ::setenv("LC_ALL", each.all, 1);
        ::setenv("LC_MESSAGES", each.messages, 1);
        ::setenv("LANG", each.lang, 1);
        EXPECT_EQ(userLanguages(), each.expected);
    }
    for (const char* name : {"LANGUAGE", "LC_ALL", "LC_MESSAGES", "LANG"}) {
        ::unsetenv(name);
    }
}

TEST_F(Localization, ATerritoryFallsBackToItsLanguageAndUnknownOnesToTheNext) {
    for (const std::vector<std::string>& languages : std::vector<std::vector<std::string>>{
             {"de"}, {"de_AT.UTF-8@euro"}, {"xx_YY", "de_DE", "fr"}, {"../locale/fr", "de"}}) {
        useCatalogue(findCatalogue(builtCatalogues, languages));
        EXPECT_EQ(localized("Noise"), "Rauschen") << languages.front();
        EXPECT_EQ(localized("Couldn’t open “%@”.", {"a.pdf"}),
                  "„a.pdf“ konnte nicht geöffnet werden.");
    }
    EXPECT_FALSE(built("xx"));
}

TEST_F(Localization, EnglishSpellsKeysAsTheKeyboardDoes) {
    useCatalogue(built("en"));
    EXPECT_EQ(localized("Delete the selected redaction (⌫)"),
              "Delete the selected redaction (Delete)");
    EXPECT_EQ(
        localized("Drag on the page to draw a redaction. Selected box: ⌫ to remove, ⌘Z to undo."),
        "Drag on the page to draw a redaction. Selected box: Delete to remove, Ctrl+Z to undo.");
    EXPECT_EQ(localized("Noise"), "Noise");
}

TEST_F(Localization, NoLanguageShowsTheKeysOfAnotherPlatform) {
    for (const char* language : {"de", "en", "es", "fr"}) {
        useCatalogue(built(language));
        for (const char* text :
             {"Delete the selected redaction (⌫)",
              "Drag on the page to draw a redaction. Selected box: ⌫ to remove, ⌘Z to undo."}) {
            const std::string shown = localized(text);
            EXPECT_EQ(shown.find("⌫"), std::string::npos) << shown;
            EXPECT_EQ(shown.find("⌘"), std::string::npos) << shown;
        }
    }
}

} // namespace
} // namespace murkwell
