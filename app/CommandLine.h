// What the window is started with.
#pragma once

#include <filesystem>
#include <string>
#include <variant>
#include <vector>

namespace murkwell {

struct Start {
    std::vector<std::filesystem::path> files; // absolute
    // Started by the session bus: the window waits until it is asked for.
    bool asService = false;
};

// Instead of a start. Goes to standard output with exit code 0, else to standard error.
struct Ending {
    int exitCode;
    std::string text;
};

// Needs no display. Files may also be given as file: addresses.
[[nodiscard]] std::variant<Start, Ending> parseCommandLine(int argc, const char* const* argv);

} // namespace murkwell
