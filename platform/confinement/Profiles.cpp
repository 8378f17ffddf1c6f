#include "platform/confinement/Profiles.h"

#include <algorithm>
#include <unistd.h>
#include <utility>

namespace murkwell::Profiles {
namespace {

constexpr std::size_t gibibyte = std::size_t{1} << 30;

// The adapters keep below these themselves (platform/pdf, platform/image): they are for what those
// do not see.
constexpr std::size_t forOnePicture = 4 * gibibyte;

// A page that is drawn alone may have half of the machine.
std::size_t forOnePage() {
    const auto machine = static_cast<std::size_t>(::sysconf(_SC_PHYS_PAGES)) *
                         static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
    return std::max(4 * gibibyte, machine / 4 * 3);
}

} // namespace

Profile pdf() {
    return {false, forOnePage(), {}};
}

Profile image() {
    return {true,
            forOnePicture,
            {"/usr/lib", "/usr/local/lib", "/usr/share/zoneinfo", "/etc/localtime",
             "/etc/ld.so.cache", "/sys/devices/system/cpu"}};
}

Profile recognition(std::vector<std::filesystem::path> models) {
    Profile profile{true,
                    forOnePicture,
                    {"/usr/lib", "/usr/local/lib", "/etc/ld.so.cache", "/sys/devices/system",
                     "/proc/cpuinfo", "/proc/self", "/dev/null"}};
    for (auto& place : models) {
        profile.readable.push_back(std::move(place));
    }
    return profile;
}

} // namespace murkwell::Profiles
