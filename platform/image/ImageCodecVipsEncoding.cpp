#include "platform/image/AlphaArithmetic.h"
#include "platform/image/BmpFile.h"
#include "platform/image/GifEncoding.h"
#include "platform/image/HeicEncoding.h"
#include "platform/image/ImageCodecVips.h"
#include "platform/image/VipsSession.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <memory>
#include <new>
#include <string_view>

namespace murkwell {
namespace {

using vips::VError;
using vips::VImage;
using vips::VOption;

using Bytes = std::vector<std::byte>;

// Measured on a photograph of 12 megapixels: 51 dB, at its original size.
constexpr double defaultHeicQuality = 0.9;

// Refers to the picture's pixels; fresh, so that nothing but them can reach the file.
VImage wrapped(const Bitmap& picture) {
    const auto pixels = picture.pixels();
    // libvips only reads from it, whatever its declaration says.
    VImage image = VImage::new_from_memory(const_cast<Rgba*>(pixels.data()), pixels.size_bytes(),
                                           picture.width(), picture.height(), 4, VIPS_FORMAT_UCHAR);
    return image.copy(VImage::option()->set("interpretation", VIPS_INTERPRETATION_sRGB));
}

VImage withoutAlpha(const VImage& image) {
    return image.extract_band(0, VImage::option()->set("n", 3));
}

int percent(double quality) {
    return static_cast<int>(std::lround(std::clamp(quality, 0.01, 1.0) * 100));
}

VOption* withoutMetadata() {
    return VImage::option()->set("strip", true);
}

Bytes bytesOf(VipsBlob* blob) {
    const std::unique_ptr<VipsBlob, void (*)(VipsBlob*)> owner(
        blob, [](VipsBlob* b) { vips_area_unref(VIPS_AREA(b)); });
    std::size_t size = 0;
    const auto* const data = static_cast<const std::byte*>(vips_blob_get(blob, &size));
    return {data, data + size};
}

// The only chunk that libvips always adds tells a resolution, which pixels do not have. It has a
// fixed size and stands before the first IDAT.
void dropResolution(Bytes& png) {
    constexpr std::string_view type = "pHYs";
    constexpr std::ptrdiff_t lengthSize = 4;
    constexpr std::ptrdiff_t chunkSize = lengthSize + 4 + 9 + 4;
    constexpr std::ptrdiff_t searched = 256;
    const auto headEnd = png.begin() + std::min(searched, std::ssize(png));
    const auto at = std::search(png.begin(), headEnd, type.begin(), type.end(),
                                [](std::byte b, char c) { return b == static_cast<std::byte>(c); });
    if (at - png.begin() > lengthSize && png.end() - at >= chunkSize - lengthSize) {
        png.erase(at - lengthSize, at - lengthSize + chunkSize);
    }
}

Bytes encodePng(const VImage& image) {
    Bytes png = bytesOf(image.pngsave_buffer(
        withoutMetadata()->set("compression", 6)->set("filter", VIPS_FOREIGN_PNG_FILTER_ALL)));
    dropResolution(png);
    return png;
}

// A baseline TIFF must tell a resolution, which pixels do not have: always the same one.
Bytes encodeTiff(const VImage& image) {
    constexpr double dotsPerInch = 72;
    constexpr double dotsPerMillimetre = dotsPerInch / 25.4;
    return bytesOf(
        image.tiffsave_buffer(withoutMetadata()
                                  ->set("resunit", VIPS_FOREIGN_TIFF_RESUNIT_INCH)
                                  ->set("xres", dotsPerMillimetre)
                                  ->set("yres", dotsPerMillimetre)
                                  ->set("compression", VIPS_FOREIGN_TIFF_COMPRESSION_DEFLATE)
                                  ->set("predictor", VIPS_FOREIGN_TIFF_PREDICTOR_HORIZONTAL)));
}

// Text keeps its colours only without chroma subsampling.
Bytes encodeJpeg(const VImage& image, std::optional<double> quality) {
    auto* const options = withoutMetadata()
                              ->set("optimize_coding", true)
                              ->set("subsample_mode", VIPS_FOREIGN_SUBSAMPLE_OFF);
    if (quality) {
        options->set("Q", percent(*quality));
    }
    return bytesOf(image.jpegsave_buffer(options));
}

// For pictures with more colours than GIF has. Dithering would spread specks over flat paper.
Bytes encodeGif(VImage image) {
    image.set("loop", 1); // else the file would claim to be an animation
    return bytesOf(image.gifsave_buffer(VImage::option()->set("dither", 0.5)));
}

using PixelChange = Rgba (*)(Rgba);

// Null when memory runs out.
BitmapRef changed(const Bitmap& picture, PixelChange change) {
    auto copy = Bitmap::copy(picture);
    if (copy) {
        std::ranges::transform(copy->pixels(), copy->pixels().begin(), change);
    }
    return copy;
}

std::optional<Bytes> encodeImage(const VImage& image, const ContentType& type,
                                 std::optional<double> quality) {
    if (type == ContentType::jpeg) {
        return encodeJpeg(image, quality);
    }
    if (type == ContentType::png) {
        return encodePng(image);
    }
    if (type == ContentType::tiff) {
        return encodeTiff(image);
    }
    if (type == ContentType::gif) {
        return encodeGif(image);
    }
    return std::nullopt;
}

std::optional<Bytes> encodeWithVips(const Bitmap& picture, const ContentType& type,
                                    std::optional<double> quality) {
    const VipsSession session;
    if (isOpaque(picture)) {
        return encodeImage(withoutAlpha(wrapped(picture)), type, quality);
    }
    const bool flattens = type == ContentType::jpeg;
    const auto stored = changed(picture, flattens ? overWhite : straight);
    if (!stored) {
        return std::nullopt;
    }
    const VImage image = wrapped(*stored);
    return encodeImage(flattens ? withoutAlpha(image) : image, type, quality);
}

} // namespace

std::vector<std::string> ImageCodecVips::encodableTypes() const {
    std::vector<std::string> identifiers;
    for (const ContentType& type : {ContentType::png, ContentType::jpeg, ContentType::tiff,
                                    ContentType::bmp, ContentType::gif}) {
        identifiers.emplace_back(type.identifier());
    }
    if (canEncodeHeic()) {
        identifiers.emplace_back(ContentType::heic.identifier());
    }
    return identifiers;
}

void prepareImageCodecVips() {
    try {
        const VipsSession session;
        static_cast<void>(canEncodeHeic());
    } catch (const VError&) {
        // Without libvips every call fails.
    }
}

std::optional<Bytes> ImageCodecVips::encode(const Bitmap& picture, const ContentType& type,
                                            std::optional<double> lossyCompressionQuality) {
    try {
        if (type == ContentType::bmp) {
            return encodeBmp(picture);
        }
        if (type == ContentType::heic) {
            return encodeHeic(picture, lossyCompressionQuality.value_or(defaultHeicQuality));
        }
        if (type == ContentType::gif) {
            if (auto exact = encodeGifExactly(picture)) {
                return exact;
            }
        }
        return encodeWithVips(picture, type, lossyCompressionQuality);
    } catch (const VError&) {
    } catch (const std::bad_alloc&) {
    }
    return std::nullopt;
}

} // namespace murkwell
