// Points the program at another folder of models for as long as it lives.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>

namespace murkwell {

class ModelFolder {
public:
    explicit ModelFolder(const std::filesystem::path& folder) {
        if (const char* const value = std::getenv(variable)) {
            before = value;
        }
        ::setenv(variable, folder.c_str(), 1);
    }
    ~ModelFolder() {
        if (before.empty()) {
            ::unsetenv(variable);
        } else {
            ::setenv(variable, before.c_str(), 1);
        }
    }
    ModelFolder(const ModelFolder&) = delete;
    ModelFolder& operator=(const ModelFolder&) = delete;

private:
    static constexpr const char* variable = "MURKWELL_MODELS";
    std::string before;
};

} // namespace murkwell
