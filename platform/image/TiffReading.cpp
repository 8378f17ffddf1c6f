#include "platform/image/TiffReading.h"

#include "core/Bitmap.h"
#include "platform/image/TiffPixels.h"
#include "platform/image/TiffSamples.h"

#include <algorithm>
#include <array>
#include <bit>
#include <vector>

namespace murkwell {
namespace {

using vips::VImage;

// libvips would take luma and chroma for red, green and blue.
bool hasUnconvertedChroma(const TiffLayout& layout) {
    const bool isJpeg = layout.compression == COMPRESSION_JPEG && !layout.separate;
    return layout.compression == COMPRESSION_OJPEG ||
           (layout.photometric == PHOTOMETRIC_YCBCR && !isJpeg);
}

// libvips refuses planes of tiles, and takes grey and alpha in two planes for one.
bool hasUncommonSamples(const TiffLayout& layout) {
    const bool isGrey = layout.photometric == PHOTOMETRIC_MINISBLACK ||
                        layout.photometric == PHOTOMETRIC_MINISWHITE;
    const bool hasOddWidth = layout.bits < 16 && !std::has_single_bit(layout.bits);
    return (layout.separate && (layout.tiled || isGrey)) || hasOddWidth ||
           (layout.bits < 8 && layout.samples > 1);
}

// By libtiff's own conversion, a row of tiles at a time.
VImage readConverted(const Tiff& tiff, const TiffLayout& layout, const TimeLimit& limit) {
    std::array<char, 1024> message{};
    TIFFRGBAImage converter{};
    require(TIFFRGBAImageBegin(&converter, tiff.get(), 1, message.data()) != 0);
    const std::unique_ptr<TIFFRGBAImage, decltype(&TIFFRGBAImageEnd)> end(&converter,
                                                                          &TIFFRGBAImageEnd);
    converter.req_orientation = converter.orientation; // rows and columns as stored
    const auto pixels = allocated<std::uint8_t>(layout.pixels() * 3);
    VImage image = imageOf(pixels, layout, 3);
    std::vector<std::uint32_t> rows(std::size_t{layout.width} *
                                    std::min(layout.tileHeight, layout.height));
    auto target = pixels.begin();
    for (std::uint32_t y = 0; y < layout.height; y += layout.tileHeight) {
        const std::uint32_t count = std::min(layout.tileHeight, layout.height - y);
        converter.row_offset = static_cast<int>(y);
        require(TIFFRGBAImageGet(&converter, rows.data(), layout.width, count) != 0);
        for (const std::uint32_t pixel : std::span(rows).first(std::size_t{layout.width} * count)) {
            *target++ = static_cast<std::uint8_t>(TIFFGetR(pixel));
            *target++ = static_cast<std::uint8_t>(TIFFGetG(pixel));
            *target++ = static_cast<std::uint8_t>(TIFFGetB(pixel));
        }
        require(!limit.isOver());
    }
    return image.copy(VImage::option()->set("interpretation", VIPS_INTERPRETATION_sRGB));
}

// Of the picture, of its bitmap later on, and of a row of tiles in two forms.
bool isAffordable(const TiffLayout& layout, std::int64_t allowedBytes) {
    if (layout.width == 0 || layout.height == 0 || layout.tileWidth == 0 ||
        layout.tileHeight == 0 || layout.pixels() > Bitmap::maxPixels) {
        return false;
    }
    const std::int64_t tileRows = std::min(layout.tileHeight, layout.height);
    const std::int64_t perPixel =
        std::int64_t{layout.samples} * (layout.bits > 8 ? 2 : 1) + std::int64_t{sizeof(Rgba)};
    const std::int64_t inTiles =
        2 * std::max(layout.bytesInTileRow(), layout.width * perPixel) * tileRows;
    return layout.bytesInTileRow() <= allowedBytes / layout.tileHeight &&
           layout.pixels() * perPixel + inTiles <= allowedBytes;
}

void keepProfile(const Tiff& tiff, VImage& image) {
    std::uint32_t size = 0;
    const void* profile = nullptr;
    if (TIFFGetField(tiff.get(), TIFFTAG_ICCPROFILE, &size, &profile) != 0) {
        vips_image_set_blob_copy(image.get_image(), VIPS_META_ICC_NAME, profile, size);
    }
}

} // namespace

std::optional<VImage> readUncommonTiff(std::span<const std::byte> file, std::int64_t allowedBytes,
                                       const TimeLimit& limit) {
    TiffSource source{file};
    const Tiff tiff = openTiff(source, allowedBytes);
    if (!tiff) {
        return std::nullopt;
    }
    const TiffLayout layout = tiffLayout(tiff);
    const bool needsConversion = hasUnconvertedChroma(layout);
    if (!needsConversion && !(hasUncommonSamples(layout) && hasReadableSamples(layout))) {
        return std::nullopt;
    }
    require(isAffordable(layout, allowedBytes));
    VImage image =
        needsConversion ? readConverted(tiff, layout, limit) : readTiffSamples(tiff, layout, limit);
    keepProfile(tiff, image);
    image.set(VIPS_META_N_PAGES, static_cast<int>(TIFFNumberOfDirectories(tiff.get())));
    return image;
}

} // namespace murkwell
