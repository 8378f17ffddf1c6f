// A TIFF file in memory as libtiff sees it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <tiffio.h>

namespace murkwell {

using Tiff = std::unique_ptr<TIFF, decltype(&TIFFClose)>;

struct TiffSource {
    std::span<const std::byte> file;
    std::size_t at = 0;
};

// The first directory has been read when this returns. Null when there is none. Prints nothing,
// and refuses single blocks of memory beyond the limit. The source must outlive the result.
[[nodiscard]] Tiff openTiff(TiffSource& source, std::int64_t allowedBytes);

// How the samples lie in the file. A strip is a tile as wide as the picture.
struct TiffLayout {
    std::uint32_t width;
    std::uint32_t height;
    std::uint16_t bits;    // of a sample
    std::uint16_t samples; // of a pixel
    std::uint16_t photometric;
    std::uint16_t compression;
    std::uint16_t format;
    bool tiled;
    bool separate; // every sample in planes of its own
    std::uint32_t tileWidth;
    std::uint32_t tileHeight;

    [[nodiscard]] std::int64_t pixels() const { return std::int64_t{width} * height; }
    [[nodiscard]] std::uint16_t planes() const { return separate ? samples : 1; }
    [[nodiscard]] std::uint16_t samplesInPlane() const { return separate ? 1 : samples; }
    [[nodiscard]] std::int64_t bytesInTileRow() const {
        return (std::int64_t{tileWidth} * samplesInPlane() * bits + 7) / 8;
    }
};

[[nodiscard]] TiffLayout tiffLayout(const Tiff& tiff);

} // namespace murkwell
