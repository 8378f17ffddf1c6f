// Loading of files that may ask for a password.
#pragma once

#include "io/DocumentIO.h"
#include "model/Panels.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace murkwell {

using LoadWith = std::function<DocumentIO::LoadResult(const std::optional<std::string>& password)>;

// Loads without a password. If the file needs one, the panel asks for it, naming the file, until it
// opens or the user gives up. The password is held for the loading alone.
[[nodiscard]] DocumentIO::LoadResult loadWithPassword(const std::filesystem::path& file,
                                                      Panels& panels, const LoadWith& load);

[[nodiscard]] bool needsPassword(const DocumentIO::LoadResult& result);

} // namespace murkwell
