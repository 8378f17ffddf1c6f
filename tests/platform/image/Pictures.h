// Pictures and files for the tests of the image codec, made by libvips directly.
#pragma once

#include "core/Bitmap.h"
#include "platform/image/ImageCodecVips.h"

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <string>
#include <vector>
#include <vips/vips8>

namespace murkwell {

using Bytes = std::vector<std::byte>;

Bytes bytes(std::initializer_list<unsigned> values);
Bytes bytes(std::string_view text);

// One 8-bit sRGB pixel after the other, 1 to 4 bands. Starts libvips.
vips::VImage rgbImage(int width, int height, const std::vector<std::uint8_t>& samples);

// Colours in all directions, none of them equal to a neighbour's.
vips::VImage gradient(int width, int height, int bands);

// The suffix chooses the format.
Bytes saved(const vips::VImage& image, const std::string& suffix, vips::VOption* options = nullptr);

// As libvips reads it, straight alpha.
vips::VImage loaded(const Bytes& file);

// Null when the codec refuses.
BitmapRef decoded(std::span<const std::byte> file);

// Opaque unless a pixel of the function is not. fill(x, y) gives premultiplied pixels.
template <class Fill>
std::shared_ptr<Bitmap> painted(int width, int height, Fill fill) {
    auto bitmap = Bitmap::create(width, height);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            bitmap->row(y)[static_cast<std::size_t>(x)] = fill(x, y);
        }
    }
    return bitmap;
}

// Largest difference of a component; 256 when the sizes differ or one is missing.
int distance(const BitmapRef& a, const BitmapRef& b);

} // namespace murkwell
