#include "platform/image/SrgbConversion.h"

#include <string_view>
#include <utility>

namespace murkwell {
namespace {

using vips::VError;
using vips::VImage;

// Gives samples that no colour space claims (32-bit integers, floating-point grey) the range of
// 8-bit ones, and bands that have no meaning the nearest one.
VImage withKnownInterpretation(VImage image) {
    const VipsInterpretation meaning = image.interpretation();
    const bool isWideRgb =
        meaning == VIPS_INTERPRETATION_sRGB &&
        (image.format() == VIPS_FORMAT_UINT || image.format() == VIPS_FORMAT_INT);
    if (meaning != VIPS_INTERPRETATION_MULTIBAND && meaning != VIPS_INTERPRETATION_B_W &&
        !isWideRgb) {
        return image;
    }
    double scale = 1;
    switch (image.format()) {
    case VIPS_FORMAT_FLOAT:
    case VIPS_FORMAT_DOUBLE:
        scale = 255;
        break;
    case VIPS_FORMAT_UINT:
        scale = 255.0 / G_MAXUINT32;
        break;
    case VIPS_FORMAT_INT:
        scale = 255.0 / G_MAXINT32;
        break;
    case VIPS_FORMAT_USHORT:
        scale = 255.0 / G_MAXUINT16;
        break;
    default:
        break;
    }
    if (scale != 1) {
        image = (image * scale + 0.5).cast(VIPS_FORMAT_UCHAR);
    }
    return image.copy(VImage::option()->set(
        "interpretation", image.bands() < 3 ? VIPS_INTERPRETATION_B_W : VIPS_INTERPRETATION_sRGB));
}

// What the embedded profile must call its colours to be meant for this image; libvips would take
// the first bands for grey ones where the profile is for grey. Empty when none can fit.
std::string_view profileColoursOf(const VImage& image) {
    if (image.format() != VIPS_FORMAT_UCHAR && image.format() != VIPS_FORMAT_USHORT) {
        return {};
    }
    switch (image.interpretation()) {
    case VIPS_INTERPRETATION_B_W:
    case VIPS_INTERPRETATION_GREY16:
        return "GRAY";
    case VIPS_INTERPRETATION_sRGB:
    case VIPS_INTERPRETATION_RGB:
    case VIPS_INTERPRETATION_RGB16:
        return "RGB ";
    case VIPS_INTERPRETATION_CMYK:
        return "CMYK";
    default:
        return {};
    }
}

bool hasFittingProfile(const VImage& image) {
    constexpr std::size_t headerSize = 128; // ICC.1:2010, 7.2
    constexpr std::size_t colourSpace = 16;
    if (image.get_typeof(VIPS_META_ICC_NAME) == 0) {
        return false;
    }
    std::size_t size = 0;
    const auto* const data = static_cast<const char*>(image.get_blob(VIPS_META_ICC_NAME, &size));
    return size >= headerSize && std::string_view(data + colourSpace, 4) == profileColoursOf(image);
}

// Perceptual, as a viewer without further settings shows it.
VImage throughProfile(const VImage& image, bool embedded) {
    auto* const options = VImage::option()
                              ->set("embedded", embedded)
                              ->set("intent", VIPS_INTENT_PERCEPTUAL)
                              ->set("depth", 8);
    if (image.interpretation() == VIPS_INTERPRETATION_CMYK) {
        options->set("input_profile", "cmyk");
    }
    return image.icc_transform("srgb", options);
}

VImage colourManaged(const VImage& image) {
    if (hasFittingProfile(image)) {
        try {
            return throughProfile(image, true);
        } catch (const VError&) {
            vips_error_clear(); // A bad profile must not cost the picture.
        }
    }
    if (image.interpretation() == VIPS_INTERPRETATION_CMYK) {
        return throughProfile(image, false);
    }
    return image.colourspace(VIPS_INTERPRETATION_sRGB);
}

int colourBands(const VImage& image) {
    switch (image.interpretation()) {
    case VIPS_INTERPRETATION_B_W:
    case VIPS_INTERPRETATION_GREY16:
        return 1;
    case VIPS_INTERPRETATION_CMYK:
        return 4;
    default:
        return 3;
    }
}

VImage asBytes(const VImage& alpha) {
    switch (alpha.format()) {
    case VIPS_FORMAT_UCHAR:
        return alpha;
    case VIPS_FORMAT_USHORT:
        return (alpha / 257.0 + 0.5).cast(VIPS_FORMAT_UCHAR);
    default: // floating point, from 0 to 1
        return (alpha * 255.0 + 0.5).cast(VIPS_FORMAT_UCHAR);
    }
}

} // namespace

VImage toSrgb(VImage image) {
    if (image.coding() != VIPS_CODING_NONE) {
        return image.colourspace(VIPS_INTERPRETATION_sRGB);
    }
    image = withKnownInterpretation(std::move(image));
    // Alpha goes its own way: colour management would clip 16-bit alpha instead of scaling it.
    const int colours = colourBands(image);
    const bool hasAlpha = image.bands() > colours;
    VImage converted = colourManaged(
        hasAlpha ? image.extract_band(0, VImage::option()->set("n", colours)) : image);
    if (converted.format() != VIPS_FORMAT_UCHAR) {
        converted = converted.cast(VIPS_FORMAT_UCHAR);
    }
    return hasAlpha ? converted.bandjoin(asBytes(image.extract_band(colours))) : converted;
}

} // namespace murkwell
