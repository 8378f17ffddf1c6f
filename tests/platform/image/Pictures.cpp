#include "tests/platform/image/Pictures.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace murkwell {

using vips::VImage;

Bytes bytes(std::initializer_list<unsigned> values) {
    Bytes result;
    for (const unsigned value : values) {
        result.push_back(static_cast<std::byte>(value));
    }
    return result;
}

Bytes bytes(std::string_view text) {
    Bytes result;
    for (const char c : text) {
        result.push_back(static_cast<std::byte>(c));
    }
    return result;
}

VImage rgbImage(int width, int height, const std::vector<std::uint8_t>& samples) {
    (void)vips_init("tests");
    const int bands = static_cast<int>(samples.size()) / (width * height);
    return VImage(vips_image_new_from_memory_copy(samples.data(), samples.size(), width, height,
                                                  bands, VIPS_FORMAT_UCHAR))
        .copy(VImage::option()->set("interpretation", bands < 3 ? VIPS_INTERPRETATION_B_W
                                                                : VIPS_INTERPRETATION_sRGB));
}

VImage gradient(int width, int height, int bands) {
    std::vector<std::uint8_t> samples;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            for (int band = 0; band < bands; ++band) {
                const int along[] = {x * 251 / width, y * 251 / height, (x + y) * 97 % 256,
                                     255 - x * 200 / width};
                samples.push_back(static_cast<std::uint8_t>(along[band]));
            }
        }
    }
    return rgbImage(width, height, samples);
}

Bytes saved(const VImage& image, const std::string& suffix, vips::VOption* options) {
    void* data = nullptr;
    std::size_t size = 0;
    image.write_to_buffer(suffix.c_str(), &data, &size, options);
    const auto* const start = static_cast<const std::byte*>(data);
    Bytes result(start, start + size);
    g_free(data);
    return result;
}

VImage loaded(const Bytes& file) {
    (void)vips_init("tests");
    return VImage::new_from_buffer(file.data(), file.size(), "").copy_memory();
}

BitmapRef decoded(std::span<const std::byte> file) {
    ImageCodecVips codec;
    const auto image = codec.decode(file);
    return image ? image->bitmap : nullptr;
}

int distance(const BitmapRef& a, const BitmapRef& b) {
    if (!a || !b || a->width() != b->width() || a->height() != b->height()) {
        return 256;
    }
    int most = 0;
    for (std::size_t i = 0; i < a->pixels().size(); ++i) {
        const Rgba p = a->pixels()[i];
        const Rgba q = b->pixels()[i];
        most = std::max({most, std::abs(p.r - q.r), std::abs(p.g - q.g), std::abs(p.b - q.b),
                         std::abs(p.a - q.a)});
    }
    return most;
}

} // namespace murkwell
