// Points the engines at another folder of models or data for as long as it lives.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>

namespace murkwell {

class FolderVariable {
public:
    FolderVariable(const char* name, const std::filesystem::path& folder) : variable(name) {
        if (const char* const value = std::getenv(variable)) {
            before = value;
        }
        ::setenv(variable, folder.c_str(), 1);
    }
    ~FolderVariable() {
        if (before.empty()) {
            ::unsetenv(variable);
        } else {
            ::setenv(variable, before.c_str(), 1);
        }
    }
    FolderVariable(const FolderVariable&) = delete;
    FolderVariable& operator=(const FolderVariable&) = delete;

private:
    const char* variable;
    std::string before;
};

struct ModelFolder : FolderVariable {
    explicit ModelFolder(const std::filesystem::path& folder)
        : FolderVariable("MURKWELL_MODELS", folder) {}
};

} // namespace murkwell
