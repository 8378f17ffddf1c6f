#include "platform/image/AlphaArithmetic.h"
#include "platform/image/BmpFile.h"
#include "platform/image/GifColours.h"
#include "platform/image/HeifTransformations.h"
#include "platform/image/ImageCodecVips.h"
#include "platform/image/ImageSignature.h"
#include "platform/image/JpegScans.h"
#include "platform/image/SrgbConversion.h"
#include "platform/image/TiffReading.h"
#include "platform/image/VipsSession.h"

#include <algorithm>
#include <atomic>
#include <memory>
#include <new>

namespace murkwell {
namespace {

using Bytes = std::span<const std::byte>;
using vips::VError;
using vips::VImage;

// Ends what the limits below let pass. The slowest honest picture that we measured, a HEIC of 100
// megapixels, takes 11 seconds of processor time.
constexpr std::chrono::seconds allowedTime{15};

// What one picture may take while it is decoded, its bitmap included. Leaves room for the file and
// the program itself under 4 GiB.
constexpr std::int64_t allowedMemory = std::int64_t{7} << 29; // 3.5 GiB

// A progressive JPEG is computed anew with every scan before its first row comes out, and the
// deadline cannot interrupt that. It takes 2 to 4 ns per pixel and scan; honest files have about
// ten scans.
constexpr std::int64_t mostPixelsTimesScans = 1'500'000'000;

// An interlaced PNG is decoded as a whole before its first row is known.
bool isInterlaced(Bytes png) {
    constexpr std::size_t interlaceMethod = 28;
    return png.size() > interlaceMethod && png[interlaceMethod] != std::byte{0};
}

// Only the header has been read when this returns. The image refers to the file's bytes.
VImage openWithVips(ImageFormat format, Bytes file) {
    auto* const blob = vips_blob_new(nullptr, file.data(), file.size());
    const std::unique_ptr<VipsBlob, void (*)(VipsBlob*)> owner(
        blob, [](VipsBlob* b) { vips_area_unref(VIPS_AREA(b)); });
    auto* const options =
        VImage::option()->set("access", VIPS_ACCESS_SEQUENTIAL)->set("fail_on", VIPS_FAIL_ON_NONE);
    switch (format) {
    case ImageFormat::png:
        // Otherwise a large interlaced picture would pass through a temporary file.
        options->set("memory", isInterlaced(file));
        return VImage::pngload_buffer(blob, options);
    case ImageFormat::jpeg:
        return VImage::jpegload_buffer(blob, options);
    case ImageFormat::tiff:
        return VImage::tiffload_buffer(blob, options);
    case ImageFormat::gif:
        return VImage::gifload_buffer(blob, options);
    case ImageFormat::heif:
        return VImage::heifload_buffer(blob, options);
    case ImageFormat::bmp:
        break;
    }
    delete options;
    throw VError("no loader for this format");
}

VImage open(ImageFormat format, Bytes file, const TimeLimit& limit) {
    if (format == ImageFormat::tiff) {
        if (const auto image = readUncommonTiff(file, allowedMemory, limit)) {
            return *image;
        }
    }
    return openWithVips(format, file);
}

// What the decoder itself holds per pixel of the whole picture, at worst.
std::int64_t decoderBytesPerPixel(ImageFormat format, const VImage& image, Bytes file) {
    const auto stored =
        std::int64_t{image.bands()} * static_cast<std::int64_t>(vips_format_sizeof(image.format()));
    switch (format) {
    case ImageFormat::png:
        return isInterlaced(file) ? 2 * stored : 0;
    case ImageFormat::jpeg: // 16-bit coefficients of all components
        return jpegScanCount(file) > 1 ? 2 * std::int64_t{image.bands()} : 0;
    case ImageFormat::tiff: // all in one strip
        return stored;
    case ImageFormat::gif: // the canvas
        return 4;
    case ImageFormat::heif: // planes, and the same interleaved
        return 2 * stored;
    case ImageFormat::bmp:
        break;
    }
    return 0;
}

bool isAffordable(ImageFormat format, const VImage& image, Bytes file) {
    const std::int64_t pixels = std::int64_t{image.width()} * image.height();
    if (pixels > Bitmap::maxPixels) {
        return false;
    }
    const std::int64_t bytesPerPixel =
        std::int64_t{sizeof(Rgba)} + decoderBytesPerPixel(format, image, file);
    if (pixels * bytesPerPixel > allowedMemory) {
        return false;
    }
    return format != ImageFormat::jpeg || pixels * jpegScanCount(file) <= mostPixelsTimesScans;
}

// A bitmap while libvips fills it, on threads of its own.
struct Reception {
    Bitmap& bitmap;
    std::atomic<int> rows{0}; // so many are there
};

// Called for one strip of rows after the other, the top one first.
int receiveRows(VipsRegion* region, VipsRect* area, void* target) {
    auto& [bitmap, rows] = *static_cast<Reception*>(target);
    if (area->top != rows) {
        return -1;
    }
    const bool hasAlpha = region->im->Bands == 4;
    for (int y = area->top; y < area->top + area->height; ++y) {
        const VipsPel* from = VIPS_REGION_ADDR(region, 0, y);
        for (Rgba& pixel : bitmap.row(y)) {
            pixel = hasAlpha ? premultiplied({from[0], from[1], from[2], from[3]})
                             : Rgba{from[0], from[1], from[2], 255};
            from += hasAlpha ? 4 : 3;
        }
    }
    rows += area->height;
    return 0;
}

// Pages, frames, or what else the format calls them.
std::size_t pictureCount(const VImage& image) {
    const int count =
        image.get_typeof(VIPS_META_N_PAGES) == 0 ? 1 : image.get_int(VIPS_META_N_PAGES);
    return static_cast<std::size_t>(std::max(count, 1));
}

// Without a bitmap when it cannot be done.
DecodedImage decodeWithVips(ImageFormat format, Bytes file) {
    const TimeLimit limit(allowedTime);
    VImage stored = open(format, file, limit);
    if (!isAffordable(format, stored, file)) {
        return {};
    }
    auto bitmap = Bitmap::create(stored.width(), stored.height());
    if (!bitmap) {
        return {};
    }
    const VipsDeadline deadline(stored, limit);
    const VImage image = toSrgb(stored);
    Reception reception{*bitmap};
    if (vips_sink_disc(image.get_image(), receiveRows, &reception) != 0 ||
        reception.rows != bitmap->height()) {
        return {};
    }
    return {bitmap, {}, pictureCount(stored)};
}

DecodedImage decodeAs(ImageFormat format, Bytes file) {
    if (format == ImageFormat::bmp) {
        return {decodeBmp(file), {}};
    }
    if (format == ImageFormat::gif && !firstGifFrameHasColours(file)) {
        return {};
    }
    const VipsSession session;
    if (format == ImageFormat::heif) {
        return decodeWithVips(format, withoutHeifRotation(file));
    }
    return decodeWithVips(format, file);
}

} // namespace

std::optional<DecodedImage> ImageCodecVips::decode(Bytes file) {
    const auto signature = imageSignature(file);
    if (!signature) {
        return std::nullopt;
    }
    try {
        DecodedImage image = decodeAs(signature->format, file);
        if (image.bitmap) {
            image.typeIdentifier = signature->type.identifier();
            return image;
        }
    } catch (const VError&) {
    } catch (const std::bad_alloc&) {
    }
    return std::nullopt;
}

} // namespace murkwell
