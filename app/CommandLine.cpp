#include "app/CommandLine.h"

#include "io/FileAddress.h"

#include <CLI/CLI.hpp>

#include <sstream>

namespace murkwell {
namespace {

constexpr int wrongUsage = 2;

std::filesystem::path locationOf(const std::string& argument) {
    if (const auto file = fileOfAddress(argument)) {
        return *file;
    }
    std::error_code failed;
    auto absolute = std::filesystem::absolute(argument, failed);
    return failed ? std::filesystem::path(argument) : absolute;
}

Ending endingOf(const CLI::App& app, const CLI::ParseError& error) {
    if (error.get_exit_code() != 0) {
        return {wrongUsage, error.what()};
    }
    std::ostringstream text;
    app.exit(error, text, text);
    std::string lines = text.str();
    lines.erase(lines.find_last_not_of('\n') + 1); // whoever prints it ends the line
    return {0, lines};
}

} // namespace

std::variant<Start, Ending> parseCommandLine(int argc, const char* const* argv) {
    CLI::App app("Redacts images and PDFs. Opens the window; murkwell-cli works without one.",
                 "murkwell");
    app.set_version_flag("--version", "murkwell " MURKWELL_VERSION);
    std::vector<std::string> files;
    app.add_option("FILE", files, "An image, a PDF or a saved document");
    Start start;
    app.add_flag("--gapplication-service", start.asService,
                 "Wait for the session bus to ask for the window");
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return endingOf(app, error);
    }
    for (const std::string& file : files) {
        if (isFileAddress(file) && !fileOfAddress(file)) {
            return Ending{wrongUsage, "“" + file + "” is no file on this machine"};
        }
        start.files.push_back(locationOf(file));
    }
    return start;
}

} // namespace murkwell
