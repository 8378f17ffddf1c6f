#include "app/External.h"

#include "app/Addresses.h"
#include "tests/support/RecordedDesktop.h"
#include "tests/support/TemporaryFolder.h"

#include <QSignalSpy>

#include <gtest/gtest.h>

namespace murkwell {
namespace {

TEST(OpenExternal, OpensWellFormedAddresses) {
    RecordedDesktop desktop;
    const QStringList wellFormed{QStringLiteral("https://murkwell.example/"),
                                 QStringLiteral("https://murkwell.example/a?b=c#d"),
                                 QStringLiteral("appstream://com.tallowick.Murkwell"),
                                 QStringLiteral("file:///usr/share/doc/a%20b.html")};
    for (const QString& address : wellFormed) {
        openExternal(address.toStdString());
    }
    // The name of a host has no letter case.
    QStringList expected = wellFormed;
    expected[2] = expected[2].toLower();
    EXPECT_EQ(desktop.addresses, expected);
}

TEST(OpenExternal, IgnoresMalformedAddresses) {
    RecordedDesktop desktop;
    for (const char* const address :
         {"", "not an address", "murkwell.example", "https://", "://", "https://a b/",
          "http://[::1", "https://murkwell.example:x/", "https:murkwell", "/etc/passwd"}) {
        openExternal(address);
    }
    EXPECT_EQ(desktop.addresses, QStringList());
}

struct HelpAddressTest : testing::Test {
    HelpAddressTest() {
        for (const char* const language : {"en", "de", "pt_BR"}) {
            std::filesystem::create_directory(folder / language);
            folder.write(std::string(language) + "/index.html", "help");
        }
    }

    std::string addressFor(std::vector<std::string> languages) const {
        return helpAddress(folder.path, languages);
    }

    TemporaryFolder folder;
};

TEST_F(HelpAddressTest, IsInTheUsersLanguageOrTheNextOne) {
    const std::string base = "file://" + folder.path.string();
    EXPECT_EQ(addressFor({"de_AT.UTF-8", "en"}), base + "/de/index.html");
    EXPECT_EQ(addressFor({"pt_BR", "en"}), base + "/pt_BR/index.html");
    EXPECT_EQ(addressFor({"ja_JP", "en"}), base + "/en/index.html");
    EXPECT_EQ(addressFor({"../../etc", "en"}), base + "/en/index.html");
}

TEST_F(HelpAddressTest, IsTheProductsPageWithoutInstalledHelp) {
    EXPECT_EQ(addressFor({"ja_JP"}), Addresses::productPage);
    EXPECT_EQ(helpAddress(folder / "missing", std::vector<std::string>{"en"}),
              Addresses::productPage);
}

// What the desktop says about its programs, as a program of that name in a folder of our own.
struct CheckForUpdatesTest : testing::Test {
    void answerWith(std::string_view script) {
        const auto program = folder.write("xdg-mime", script);
        std::filesystem::permissions(program, std::filesystem::perms::owner_all);
    }
    QStringList opened() {
        qputenv("PATH", folder.path.c_str());
        RecordedDesktop desktop;
        QSignalSpy openings(&desktop, &RecordedDesktop::opened);
        checkForUpdates();
        EXPECT_TRUE(openings.count() > 0 || openings.wait());
        qputenv("PATH", before);
        return desktop.addresses;
    }

    QByteArray before = qgetenv("PATH");
    TemporaryFolder folder;
    QStringList productPage{QStringLiteral("https://murkwell.example/")};
};

TEST_F(CheckForUpdatesTest, OpensTheSoftwareCentre) {
    answerWith("#!/bin/sh\necho org.gnome.Software.desktop\n");
    EXPECT_EQ(opened(), QStringList{QStringLiteral("appstream://com.tallowick.murkwell")});
}

TEST_F(CheckForUpdatesTest, OpensTheProductsPageWithoutASoftwareCentre) {
    answerWith("#!/bin/sh\necho\n");
    EXPECT_EQ(opened(), productPage);
}

TEST_F(CheckForUpdatesTest, OpensTheProductsPageWhereNobodyKnows) {
    EXPECT_EQ(opened(), productPage);
    answerWith("#!/bin/sh\nkill -9 $$\n");
    EXPECT_EQ(opened(), productPage);
}

} // namespace
} // namespace murkwell
