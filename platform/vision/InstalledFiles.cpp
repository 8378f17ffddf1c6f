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

// The folder above the one that holds the running program: /usr of /usr/bin/murkwell.
std::optional<fs::path> programPrefix() {
    std::error_code error;
    const fs::path program = fs::read_symlink("/proc/self/exe", error);
    return error ? std::nullopt : std::optional(program.parent_path().parent_path());
}

std::optional<fs::path> cacheFolder() {
    if (const auto cache = environmentPath("XDG_CACHE_HOME")) {
        return *cache / "murkwell";
    }
    const auto home = environmentPath("HOME");
    return home ? std::optional(*home / ".cache" / "murkwell") : std::nullopt;
}

} // namespace

std::optional<fs::path> installedModel(std::string_view name) {
    std::vector<fs::path> folders;
    if (const auto chosen = environmentPath("MURKWELL_MODELS")) {
        folders.push_back(*chosen);
    } else {
        if (const auto prefix = programPrefix()) {
            folders.push_back(*prefix / "share" / "murkwell" / "models");
        }
        if (const auto cache = cacheFolder()) {
            folders.push_back(*cache / "models");
        }
    }
    for (const fs::path& folder : folders) {
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

} // namespace murkwell
