#include "platform/vision/InstalledFiles.h"

#include <cstdlib>
#include <system_error>

namespace murkwell {
namespace {

namespace fs = std::filesystem;

// None when unset or empty.
std::optional<fs::path> environmentPath(const char* variable) {
    const char* const value = std::getenv(variable);
    return value != nullptr && *value != '\0' ? std::optional<fs::path>(value) : std::nullopt;
}

// /usr of /usr/bin/murkwell and of /usr/libexec/murkwell/murkwell-recognition.
std::optional<fs::path> programPrefix() {
    std::error_code error;
    const fs::path program = fs::read_symlink("/proc/self/exe", error);
    if (error) {
        return std::nullopt;
    }
    const fs::path folder = program.parent_path();
    const bool isWorker = folder.parent_path().filename() == "libexec";
    return (isWorker ? folder.parent_path() : folder).parent_path();
}

std::optional<fs::path> cacheFolder() {
    if (const auto cache = environmentPath("XDG_CACHE_HOME")) {
        return *cache / "murkwell";
    }
    const auto home = environmentPath("HOME");
    return home ? std::optional(*home / ".cache" / "murkwell") : std::nullopt;
}

std::vector<fs::path> foldersOfModels() {
    if (const auto chosen = environmentPath("MURKWELL_MODELS")) {
        return {*chosen};
    }
    std::vector<fs::path> folders;
    if (const auto prefix = programPrefix()) {
        folders.push_back(*prefix / "share" / "murkwell" / "models");
    }
    if (const auto cache = cacheFolder()) {
        folders.push_back(*cache / "models");
    }
    return folders;
}

} // namespace

std::optional<fs::path> installedModel(std::string_view name) {
    for (const fs::path& folder : foldersOfModels()) {
        std::error_code error;
        if (fs::is_regular_file(folder / name, error)) {
            return folder / name;
        }
    }
    return std::nullopt;
}

std::vector<fs::path> placesOfLibrary(std::string_view name) {
    std::vector<fs::path> places;
    if (const auto prefix = programPrefix()) {
        places.push_back(*prefix / "lib" / "murkwell" / name);
    }
    places.emplace_back(name);
    if (const auto cache = cacheFolder()) {
        places.push_back(*cache / "onnxruntime" / "lib" / name);
    }
    return places;
}

std::vector<fs::path> installedFolders() {
    auto folders = foldersOfModels();
    for (const fs::path& place : placesOfLibrary("any")) {
        if (place.has_parent_path()) {
            folders.push_back(place.parent_path());
        }
    }
    return folders;
}

} // namespace murkwell
