#include "platform/image/JpegScans.h"

#include <algorithm>

namespace murkwell {
namespace {

constexpr std::byte markerPrefix{0xff};
constexpr unsigned startOfImage = 0xd8;
constexpr unsigned endOfImage = 0xd9;
constexpr unsigned startOfScan = 0xda;
constexpr unsigned firstRestart = 0xd0;
constexpr unsigned lastRestart = 0xd7;

bool isInsideCodedData(unsigned marker) {
    return marker == 0 || (marker >= firstRestart && marker <= lastRestart);
}

} // namespace

std::int64_t jpegScanCount(std::span<const std::byte> file) {
    std::int64_t count = 0;
    auto at = file.begin();
    for (;;) {
        // Coded data of a scan is passed over here as well: in it, the prefix announces nothing.
        at = std::find(at, file.end(), markerPrefix);
        at = std::find_if(at, file.end(), [](std::byte b) { return b != markerPrefix; });
        if (at == file.end()) {
            return count;
        }
        const auto marker = std::to_integer<unsigned>(*at++);
        if (marker == endOfImage) {
            return count;
        }
        if (marker == startOfImage || isInsideCodedData(marker)) {
            continue;
        }
        count += marker == startOfScan ? 1 : 0;
        if (file.end() - at < 2) {
            return count;
        }
        const auto length =
            std::to_integer<std::ptrdiff_t>(at[0]) * 256 + std::to_integer<std::ptrdiff_t>(at[1]);
        at += std::min(length, file.end() - at);
    }
}

} // namespace murkwell
