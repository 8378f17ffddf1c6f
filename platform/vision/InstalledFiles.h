// Where the models and libraries lie that come with the program, or from script/fetch-models.
#pragma once

#include <filesystem>
#include <optional>
#include <string_view>
#include <vector>

namespace murkwell {

// The model of that file name. Looked for in the folder that MURKWELL_MODELS names and nowhere else
// when that is set; otherwise in share/murkwell/models under the prefix that the program is
// installed under, then in the cache. None when it is in neither.
[[nodiscard]] std::optional<std::filesystem::path> installedModel(std::string_view name);

// Where a library of that file name may be, most wanted first: lib/murkwell under the same
// prefix, wherever the system keeps libraries (the bare name), the cache.
[[nodiscard]] std::vector<std::filesystem::path> placesOfLibrary(std::string_view name);

// All folders that the functions above look into, but for the system's own.
[[nodiscard]] std::vector<std::filesystem::path> installedFolders();

} // namespace murkwell
