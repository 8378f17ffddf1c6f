#include "platform/confinement/Profiles.h"

#include <utility>

namespace murkwell::Profiles {
namespace {

constexpr std::size_t gibibyte = std::size_t{1} << 30;

// The adapters keep below it themselves (platform/pdf, platform/image); this is for what they do
// not see.
constexpr std::size_t privateMemory = 4 * gibibyte;

} // namespace

Profile pdf() {
    return {false, privateMemory, {}};
}

Profile image() {
    return {true,
            privateMemory,
            {"/usr/lib", "/usr/local/lib", "/usr/share/zoneinfo", "/etc/localtime",
             "/etc/ld.so.cache", "/sys/devices/system/cpu"}};
}

Profile recognition(std::vector<std::filesystem::path> models) {
    Profile profile{true,
                    privateMemory,
                    {"/usr/lib", "/usr/local/lib", "/etc/ld.so.cache", "/usr/share/tesseract-ocr",
                     "/sys/devices/system", "/proc/cpuinfo", "/proc/self", "/dev/null"}};
    for (auto& place : models) {
        profile.readable.push_back(std::move(place));
    }
    return profile;
}

} // namespace murkwell::Profiles
