#include "app/CommandLine.h"

#include <gmock/gmock.h>

#include <initializer_list>

namespace murkwell {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

std::variant<Start, Ending> parse(std::initializer_list<const char*> arguments) {
    std::vector<const char*> line{"murkwell"};
    line.insert(line.end(), arguments);
    return parseCommandLine(static_cast<int>(line.size()), line.data());
}

Start started(std::initializer_list<const char*> arguments) {
    const auto result = parse(arguments);
    return std::holds_alternative<Start>(result) ? std::get<Start>(result) : Start{{"none"}};
}

TEST(CommandLine, FilesAreAbsoluteWhateverTheirForm) {
    const auto here = std::filesystem::current_path();
    EXPECT_THAT(started({"/tmp/a.pdf", "b c.png", "file:///tmp/d%20%FF\xe9.pdf"}).files,
                ElementsAre("/tmp/a.pdf", here / "b c.png", "/tmp/d \xff\xe9.pdf"));
    EXPECT_THAT(started({"--", "--version", "-x.pdf"}).files,
                ElementsAre(here / "--version", here / "-x.pdf"));
    EXPECT_THAT(started({}).files, ElementsAre());
}

TEST(CommandLine, OnlyTheSessionBusStartsAService) {
    EXPECT_TRUE(started({"--gapplication-service"}).asService);
    EXPECT_FALSE(started({"a.pdf"}).asService);
}

TEST(CommandLine, HelpAndVersionEndWell) {
    for (const auto& [option, part] : {std::pair("--help", "FILE"), {"--version", "murkwell "}}) {
        const auto result = parse({option, "a.pdf"});
        ASSERT_TRUE(std::holds_alternative<Ending>(result)) << option;
        EXPECT_EQ(std::get<Ending>(result).exitCode, 0);
        EXPECT_THAT(std::get<Ending>(result).text, HasSubstr(part));
    }
}

TEST(CommandLine, UnknownOptionsAndFilesOfOtherMachinesAreWrongUsage) {
    for (const char* const option : {"--unknown", "-x", "--versio", "file://otherhost/a.pdf"}) {
        const auto result = parse({option});
        ASSERT_TRUE(std::holds_alternative<Ending>(result)) << option;
        EXPECT_EQ(std::get<Ending>(result).exitCode, 2) << option;
        EXPECT_THAT(std::get<Ending>(result).text, HasSubstr(option)) << option;
    }
}

} // namespace
} // namespace murkwell
