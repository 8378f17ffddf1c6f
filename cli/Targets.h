// Where a call of `redact` writes, known before anything is read to the end or written.
#pragma once

#include "cli/Arguments.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace murkwell::cli {

// What one source becomes.
struct Targets {
    std::optional<std::filesystem::path> savedDocument;
    // None also where the source's name does not tell what it is: such a one cannot be opened.
    std::optional<std::filesystem::path> exported;
};

// One for each source.
[[nodiscard]] std::vector<Targets> targetsOf(const RedactArguments& arguments);

// A message for each target that is one of the sources or another target, under whatever name. Only
// a saved document may be saved in its own place.
[[nodiscard]] std::vector<std::string> clashes(const std::vector<std::filesystem::path>& sources,
                                               const std::vector<Targets>& targets);

} // namespace murkwell::cli
