#include "platform/qt/PreferencesQt.h"

#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace murkwell {
namespace {

constexpr std::string_view key = "Murkwell.aBoolean";

struct PreferencesTest : testing::Test {
    PreferencesTest() { qputenv("XDG_CONFIG_HOME", folder.path.c_str()); }
    ~PreferencesTest() override { qputenv("XDG_CONFIG_HOME", before); }

    QByteArray before = qgetenv("XDG_CONFIG_HOME");
    TemporaryFolder folder;
};

TEST_F(PreferencesTest, NothingStoredIsFalse) {
    EXPECT_FALSE(PreferencesQt().boolean(key));
    EXPECT_EQ(folder.entryCount(), 0) << "asking leaves no trace";
}

TEST_F(PreferencesTest, ValuesOutliveTheProgram) {
    PreferencesQt().setBoolean(key, true);
    EXPECT_TRUE(PreferencesQt().boolean(key));
    EXPECT_FALSE(PreferencesQt().boolean("Murkwell.another"));
    PreferencesQt().setBoolean(key, false);
    EXPECT_FALSE(PreferencesQt().boolean(key));
}

TEST_F(PreferencesTest, AreOneFileOfTheConfigurationFolder) {
    const PreferencesQt unused;
    PreferencesQt().setBoolean(key, true);
    EXPECT_EQ(contentOf(folder / "murkwell/preferences.ini"),
              "[General]\nMurkwell.aBoolean=true\n");
}

TEST_F(PreferencesTest, WhatIsNotTrueIsFalse) {
    std::filesystem::create_directory(folder / "murkwell");
    const std::string garbage = "\0\xff[[[\n=\n[General\nMurkwell.aBoolean=tru";
    for (const std::string& content :
         {std::string(), garbage, std::string("[General]\nMurkwell.aBoolean=yes\n"),
          std::string("[General]\nMurkwell.aBoolean=@Invalid()\n")}) {
        folder.write("murkwell/preferences.ini", content);
        EXPECT_FALSE(PreferencesQt().boolean(key)) << content;
    }
}

// A file in its place is a folder that nobody can write to, not even the administrator.
TEST_F(PreferencesTest, PlaceThatCannotBeWrittenIsEmptyAtEveryStart) {
    folder.write("murkwell", "a file");
    {
        PreferencesQt preferences;
        EXPECT_FALSE(preferences.boolean(key));
        preferences.setBoolean(key, true);
        EXPECT_TRUE(preferences.boolean(key)) << "asked once per run is enough";
    }
    EXPECT_FALSE(PreferencesQt().boolean(key));
    EXPECT_EQ(contentOf(folder / "murkwell"), "a file");
}

} // namespace
} // namespace murkwell
