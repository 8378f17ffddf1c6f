#include "io/FileName.h"

#include "io/Unicode.h"

namespace murkwell {
namespace {

std::filesystem::path lastComponent(const std::filesystem::path& location) {
    return location.has_filename() ? location.filename() : location.parent_path().filename();
}

} // namespace

std::string lowerCased(std::string_view text) {
    std::string result(text);
    for (char& c : result) {
        if (c >= 'A' && c <= 'Z') {
            c = static_cast<char>(c - 'A' + 'a');
        }
    }
    return result;
}

std::string lastPathComponent(const std::filesystem::path& location) {
    return lastComponent(location).string();
}

std::string shownName(const std::filesystem::path& location) {
    return printable(lastPathComponent(location));
}

std::string pathExtension(const std::filesystem::path& location) {
    const std::string extension = lastComponent(location).extension().string();
    return extension.empty() ? extension : extension.substr(1);
}

std::string baseName(const std::filesystem::path& location) {
    const auto name = lastComponent(location);
    return (pathExtension(location).empty() ? name : name.stem()).string();
}

} // namespace murkwell
