#include "platform/image/TiffSamples.h"

#include "platform/image/TiffPixels.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <vector>

namespace murkwell {
namespace {

using Bytes = std::span<const std::byte>;
using vips::VImage;

std::uint16_t colourSamples(const TiffLayout& layout) {
    switch (layout.photometric) {
    case PHOTOMETRIC_MINISBLACK:
    case PHOTOMETRIC_MINISWHITE:
        return 1;
    case PHOTOMETRIC_RGB:
        return 3;
    case PHOTOMETRIC_SEPARATED:
        return 4;
    default:
        return 0;
    }
}

// From a row of bytes; what is not whole bytes starts with the highest bit. Samples of 16 bits are
// in the machine's order already.
unsigned sampleAt(Bytes row, std::size_t index, unsigned bits) {
    if (bits == 16) {
        std::uint16_t value = 0;
        std::memcpy(&value, &row[index * 2], sizeof value);
        return value;
    }
    std::size_t bit = index * bits;
    unsigned value = 0;
    for (unsigned missing = bits; missing > 0;) {
        const auto offset = static_cast<unsigned>(bit % 8);
        const unsigned taken = std::min(8 - offset, missing);
        const unsigned rest = std::to_integer<unsigned>(row[bit / 8]) >> (8 - offset - taken);
        value = value << taken | (rest & ((1U << taken) - 1));
        bit += taken;
        missing -= taken;
    }
    return value;
}

template <typename Sample>
class SampleReader {
public:
    SampleReader(const Tiff& opened, const TiffLayout& itsLayout)
        : tiff(opened), layout(itsLayout), scaled(std::size_t{1} << layout.bits),
          tile(static_cast<std::size_t>(layout.bytesInTileRow() * layout.tileHeight)) {
        constexpr std::size_t most = std::numeric_limits<Sample>::max();
        const std::size_t end = scaled.size() - 1;
        for (std::size_t value = 0; value <= end; ++value) {
            scaled[value] = static_cast<Sample>((value * most + end / 2) / end);
        }
    }

    VImage read(const TimeLimit& limit) {
        const auto pixels = allocated<Sample>(layout.pixels() * layout.samples);
        const VImage image = imageOf(pixels, layout, layout.samples);
        std::uint32_t index = 0;
        for (std::uint16_t plane = 0; plane < layout.planes(); ++plane) {
            for (std::uint32_t y = 0; y < layout.height; y += layout.tileHeight) {
                for (std::uint32_t x = 0; x < layout.width; x += layout.tileWidth) {
                    readTile(index++, std::min(layout.tileHeight, layout.height - y));
                    copyTile(pixels, x, y, plane);
                    require(!limit.isOver());
                }
            }
        }
        return image;
    }

private:
    void readTile(std::uint32_t index, std::uint32_t rows) {
        const auto size = static_cast<tmsize_t>(tile.size());
        const auto got = layout.tiled ? TIFFReadEncodedTile(tiff.get(), index, tile.data(), size)
                                      : TIFFReadEncodedStrip(tiff.get(), index, tile.data(), size);
        require(got >= layout.bytesInTileRow() * rows);
    }

    void copyTile(std::span<Sample> pixels, std::uint32_t left, std::uint32_t top,
                  std::uint16_t plane) const {
        const std::size_t columns = std::min(layout.tileWidth, layout.width - left);
        const std::uint32_t rows = std::min(layout.tileHeight, layout.height - top);
        const auto bytesInRow = static_cast<std::size_t>(layout.bytesInTileRow());
        const std::size_t stored = layout.samplesInPlane();
        for (std::uint32_t y = 0; y < rows; ++y) {
            const Bytes row = Bytes(tile).subspan(y * bytesInRow, bytesInRow);
            std::size_t target = (std::size_t{top + y} * layout.width + left) * layout.samples;
            for (std::size_t x = 0; x < columns; ++x, target += layout.samples) {
                for (std::size_t i = 0; i < stored; ++i) {
                    pixels[target + plane + i] = scaled[sampleAt(row, x * stored + i, layout.bits)];
                }
            }
        }
    }

    const Tiff& tiff;
    const TiffLayout& layout;
    std::vector<Sample> scaled; // by stored value
    std::vector<std::byte> tile;
};

VipsInterpretation interpretationOf(const TiffLayout& layout) {
    const bool deep = layout.bits > 8;
    switch (colourSamples(layout)) {
    case 1:
        return deep ? VIPS_INTERPRETATION_GREY16 : VIPS_INTERPRETATION_B_W;
    case 3:
        return deep ? VIPS_INTERPRETATION_RGB16 : VIPS_INTERPRETATION_sRGB;
    default:
        return VIPS_INTERPRETATION_CMYK;
    }
}

// Straight alpha, and white as the highest value.
VImage normalised(VImage image, const TiffLayout& layout, bool premultiplied) {
    const int colours = colourSamples(layout);
    if (layout.photometric == PHOTOMETRIC_MINISWHITE) {
        const VImage inverted = image.extract_band(0).invert();
        image = layout.samples == 1 ? inverted
                                    : inverted.bandjoin(image.extract_band(
                                          1, VImage::option()->set("n", layout.samples - 1)));
    }
    image = image.copy(VImage::option()->set("interpretation", interpretationOf(layout)));
    if (!premultiplied || layout.samples <= colours) {
        return image;
    }
    return image.unpremultiply(VImage::option()->set("alpha_band", colours)).cast(image.format());
}

bool isPremultiplied(const Tiff& tiff) {
    std::uint16_t count = 0;
    const std::uint16_t* meanings = nullptr;
    return TIFFGetField(tiff.get(), TIFFTAG_EXTRASAMPLES, &count, &meanings) != 0 && count > 0 &&
           *meanings == EXTRASAMPLE_ASSOCALPHA;
}

} // namespace

bool hasReadableSamples(const TiffLayout& layout) {
    return layout.bits > 0 && layout.bits <= 16 && colourSamples(layout) > 0 &&
           layout.samples >= colourSamples(layout) &&
           (layout.format == SAMPLEFORMAT_UINT || layout.format == SAMPLEFORMAT_VOID);
}

VImage readTiffSamples(const Tiff& tiff, const TiffLayout& layout, const TimeLimit& limit) {
    const VImage stored = layout.bits <= 8 ? SampleReader<std::uint8_t>(tiff, layout).read(limit)
                                           : SampleReader<std::uint16_t>(tiff, layout).read(limit);
    return normalised(stored, layout, isPremultiplied(tiff));
}

} // namespace murkwell
