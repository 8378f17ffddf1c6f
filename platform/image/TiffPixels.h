// Memory for the pixels that are read from a TIFF.
#pragma once

#include "platform/image/TiffFile.h"

#include <span>
#include <vips/vips8>

namespace murkwell {

// Throws vips::VError when it does not hold.
inline void require(bool condition) {
    if (!condition) {
        throw vips::VError("this TIFF cannot be read");
    }
}

// Freed by the image that takes it over.
template <typename Sample>
[[nodiscard]] std::span<Sample> allocated(std::int64_t count) {
    const auto size = static_cast<std::size_t>(count);
    auto* const memory = static_cast<Sample*>(g_try_malloc0_n(size, sizeof(Sample)));
    require(memory != nullptr);
    return {memory, size};
}

template <typename Sample>
[[nodiscard]] vips::VImage imageOf(std::span<Sample> pixels, const TiffLayout& layout, int bands) {
    return vips::VImage::new_from_memory_steal(
        pixels.data(), pixels.size_bytes(), static_cast<int>(layout.width),
        static_cast<int>(layout.height), bands,
        sizeof(Sample) == 1 ? VIPS_FORMAT_UCHAR : VIPS_FORMAT_USHORT);
}

} // namespace murkwell
