#include "platform/qt/FileNames.h"

#include <gtest/gtest.h>

namespace murkwell {
namespace {

TEST(FileNames, AddressesKeepEveryByte) {
    for (const char* const name :
         {"/a/plain.pdf", "/with space/100%.pdf", "/why?#fragment.png", "/Ünïcode/文書.pdf",
          "/not \xff\xfe utf8.png", "/semi;colon&and=.pdf", "/new\nline.pdf", "//double"}) {
        const std::filesystem::path file(name);
        const QString address = fileAddress(file);
        EXPECT_TRUE(address.startsWith(QStringLiteral("file:///"))) << address.toStdString();
        EXPECT_EQ(fileOfAddress(address), file) << address.toStdString();
    }
}

TEST(FileNames, AddressesAreThoseOfOtherPrograms) {
    EXPECT_EQ(fileAddress("/tmp/a b%ä.pdf").toStdString(), "file:///tmp/a%20b%25%C3%A4.pdf");
    EXPECT_EQ(fileOfAddress(QStringLiteral("file://localhost/tmp/a.pdf")), "/tmp/a.pdf");
    EXPECT_EQ(fileOfAddress(QStringLiteral("file:/tmp/a.pdf")), "/tmp/a.pdf");
}

TEST(FileNames, OtherAddressesAreNoFiles) {
    for (const char* const address :
         {"", "https://murkwell.example/a.pdf", "/tmp/a.pdf", "a.pdf", "file://server/share/a.pdf",
          "file:///a%00.pdf", "file:", "file://"}) {
        EXPECT_EQ(fileOfAddress(QString::fromUtf8(address)), std::nullopt) << address;
    }
}

} // namespace
} // namespace murkwell
