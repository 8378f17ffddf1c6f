// A folder of its own for a test, gone afterwards.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

namespace murkwell {

class TemporaryFolder {
public:
    TemporaryFolder() {
        std::string name = (std::filesystem::temp_directory_path() / "murkwell-XXXXXX").string();
        path = ::mkdtemp(name.data());
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    std::filesystem::path operator/(std::string_view name) const { return path / name; }

    std::filesystem::path write(std::string_view name, std::string_view content) const {
        std::ofstream(path / name, std::ios::binary) << content;
        return path / name;
    }

    // How many entries the folder has, hidden ones included.
    [[nodiscard]] long entryCount() const {
        return std::distance(std::filesystem::directory_iterator(path), {});
    }

    std::filesystem::path path;
};

inline std::string contentOf(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

} // namespace murkwell
