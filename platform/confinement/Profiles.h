// What each worker is allowed.
#pragma once

#include <cstddef>
#include <filesystem>
#include <vector>

namespace murkwell {

struct Profile {
    bool startsThreads;
    std::size_t privateMemory; // bytes that it may have for writing, without what it is lent
    // Files, and folders with all that is in them, that it reads while it loads.
    std::vector<std::filesystem::path> readable;
};

namespace Profiles {

// Draws pages on one thread; needs no file at all.
[[nodiscard]] Profile pdf();

// Decodes and encodes pictures.
[[nodiscard]] Profile image();

// Reads text and finds faces, with models that lie in these places.
[[nodiscard]] Profile recognition(std::vector<std::filesystem::path> models);

} // namespace Profiles
} // namespace murkwell
