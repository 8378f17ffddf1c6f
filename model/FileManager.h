// Port: the desktop's file manager.
#pragma once

#include <filesystem>

namespace murkwell {

// Called on the main thread.
class FileManager {
public:
    virtual ~FileManager() = default;

    // Opens a window in which the file is selected. Whether it still exists is not checked, and a
    // desktop without a file manager does nothing.
    virtual void reveal(const std::filesystem::path& file) = 0;
};

} // namespace murkwell
