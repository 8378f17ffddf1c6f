#include "io/FileAddress.h"

#include <gtest/gtest.h>

#include <array>
#include <unistd.h>

namespace murkwell {
namespace {

TEST(FileAddress, KeepsEveryByte) {
    for (const char* const name :
         {"/a/plain.pdf", "/with space/100%.pdf", "/why?#fragment.png", "/Ünïcode/文書.pdf",
          "/not \xff\xfe utf8.png", "/semi;colon&and=.pdf", "/new\nline.pdf", "//double"}) {
        const std::string address = fileAddress(name);
        EXPECT_TRUE(address.starts_with("file:///")) << address;
        EXPECT_EQ(fileOfAddress(address), name) << address;
    }
}

TEST(FileAddress, IsThatOfOtherPrograms) {
    std::array<char, 256> host{};
    ASSERT_EQ(::gethostname(host.data(), host.size() - 1), 0);
    EXPECT_EQ(fileAddress("/tmp/a b%ä.pdf"), "file:///tmp/a%20b%25%C3%A4.pdf");
    EXPECT_EQ(fileOfAddress("file://localhost/tmp/a.pdf"), "/tmp/a.pdf");
    EXPECT_EQ(fileOfAddress("file://" + std::string(host.data()) + "/tmp/a.pdf"), "/tmp/a.pdf");
    EXPECT_EQ(fileOfAddress("FILE:/tmp/a.pdf"), "/tmp/a.pdf");
    EXPECT_EQ(fileOfAddress("file:///raw \xe9 50%.pdf?query#part"), "/raw \xe9 50%.pdf");
}

TEST(FileAddress, OthersAreNoFiles) {
    for (const char* const address :
         {"", "https://murkwell.example/a.pdf", "/tmp/a.pdf", "a.pdf", "file://server/share/a.pdf",
          "file:///a%00.pdf", "file:", "file://", "file:a.pdf"}) {
        EXPECT_EQ(fileOfAddress(address), std::nullopt) << address;
    }
    EXPECT_EQ(filesOfAddressList("# a comment\r\nfile:///a\r\nfile://server/b\r\nfile:///c%E9\r\n"),
              (std::vector<std::filesystem::path>{"/a", "/c\xe9"}));
}

} // namespace
} // namespace murkwell
