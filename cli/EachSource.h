// Works through the sources of a command: one that fails is reported and does not stop the others.
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace murkwell::cli {

// A message when a source could not be done.
using Failure = std::optional<std::string>;

// True when every source could be done.
[[nodiscard]] bool forEachSource(const std::vector<std::filesystem::path>& sources,
                                 const std::function<Failure(const std::filesystem::path&)>& work);

} // namespace murkwell::cli
