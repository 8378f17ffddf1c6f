// The parts of a file's name, as the user sees them. Names are UTF-8 by convention, any bytes in
// fact.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace murkwell {

// ASCII letters only: the extensions we know have no others.
[[nodiscard]] std::string lowerCased(std::string_view text);

// The last component, also of a location that ends in a slash.
[[nodiscard]] std::string lastPathComponent(const std::filesystem::path& location);

// The same as it can be shown to the user; not the name of a file.
[[nodiscard]] std::string shownName(const std::filesystem::path& location);

// Without the dot; empty when there is none. A name such as ".pdf" has no extension.
[[nodiscard]] std::string pathExtension(const std::filesystem::path& location);

// The last component without its extension.
[[nodiscard]] std::string baseName(const std::filesystem::path& location);

} // namespace murkwell
