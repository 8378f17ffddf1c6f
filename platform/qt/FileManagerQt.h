// Reveals files through the desktop's own file manager.
#pragma once

#include "model/FileManager.h"

namespace murkwell {

// Asks over the session bus (org.freedesktop.FileManager1) without waiting for the answer. Where
// nobody answers there, the folder is opened instead.
class FileManagerQt final : public FileManager {
public:
    void reveal(const std::filesystem::path& file) override;
};

} // namespace murkwell
