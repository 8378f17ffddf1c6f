// The keys of a saved document, as docs/file-format.md lists them.
#pragma once

#include <string_view>

namespace murkwell::MurkwellDocumentKeys {

// Of the document.
inline constexpr std::string_view version = "version";
inline constexpr std::string_view sourceFilename = "sourceFilename";
inline constexpr std::string_view sourceData = "sourceData";
inline constexpr std::string_view pages = "pages";

// Of a box.
inline constexpr std::string_view rect = "rect";
inline constexpr std::string_view style = "style";
inline constexpr std::string_view detected = "detected";

} // namespace murkwell::MurkwellDocumentKeys
