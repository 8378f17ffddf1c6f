#include "platform/vision/Transparency.h"

#include <algorithm>
#include <memory>

namespace murkwell {

bool hasTransparency(const Bitmap& image) {
    constexpr std::uint8_t opaque = 255;
    return std::ranges::any_of(image.pixels(), [](const Rgba& pixel) { return pixel.a != opaque; });
}

BitmapRef onBlack(const Bitmap& image) {
    const std::shared_ptr<Bitmap> dark = Bitmap::create(image.width(), image.height());
    if (dark) {
        // Premultiplied colours are those on black.
        std::ranges::transform(image.pixels(), dark->pixels().begin(), [](const Rgba& pixel) {
            return Rgba{pixel.r, pixel.g, pixel.b, 255};
        });
    }
    return dark;
}

} // namespace murkwell
