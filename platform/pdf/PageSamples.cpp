#include "platform/pdf/PageSamples.h"

#include <algorithm>
#include <array>
#include <bit>
#include <optional>
#include <span>

namespace murkwell {
namespace {

constexpr std::size_t mostColours = 256;

bool isGrey(Rgba pixel) {
    return pixel.r == pixel.g && pixel.g == pixel.b;
}

bool isBlackOrWhite(Rgba pixel) {
    return isGrey(pixel) && (pixel.r == 0 || pixel.r == 255);
}

// The distinct colours of a page, numbered as they come, up to 256 of them.
class Palette {
public:
    // The number of the colour; none when it is one too many.
    std::optional<std::uint8_t> indexOf(Rgba pixel) {
        const std::uint32_t key = std::bit_cast<std::uint32_t>(pixel) | 0xff000000U;
        if (key == lastKey) {
            return lastIndex;
        }
        for (std::size_t slot = hash(key);; slot = (slot + 1) % slots.size()) {
            Slot& candidate = slots[slot];
            if (candidate.key == unused) {
                if (colours_.size() == mostColours) {
                    return std::nullopt;
                }
                candidate = {key, static_cast<std::uint8_t>(colours_.size())};
                colours_.push_back({pixel.r, pixel.g, pixel.b});
            }
            if (candidate.key == key) {
                lastKey = key;
                lastIndex = candidate.index;
                return lastIndex;
            }
        }
    }

    [[nodiscard]] const std::vector<PageImage::Rgb>& colours() const { return colours_; }

private:
    struct Slot {
        std::uint32_t key = unused;
        std::uint8_t index = 0;
    };

    // No key: keys have their highest byte set (the alpha of an opaque pixel, on little endian).
    static constexpr std::uint32_t unused = 0;

    // Fibonacci hashing into 1024 slots, four times as many as there are colours.
    static std::size_t hash(std::uint32_t key) { return key * 2654435769U >> 22; }

    std::array<Slot, 1024> slots{};
    std::vector<PageImage::Rgb> colours_;
    std::uint32_t lastKey = unused;
    std::uint8_t lastIndex = 0;
};
static_assert(std::endian::native == std::endian::little);

// One index per pixel. None when there are more than 256 colours.
std::optional<std::vector<std::uint8_t>> indices(const Bitmap& page, Palette& palette) {
    std::vector<std::uint8_t> result;
    result.reserve(page.pixels().size());
    for (const Rgba pixel : page.pixels()) {
        const auto index = palette.indexOf(pixel);
        if (!index) {
            return std::nullopt;
        }
        result.push_back(*index);
    }
    return result;
}

// Packs values of 0 and 1, the first pixel of a row in the highest bit.
std::vector<std::uint8_t> packBits(std::span<const std::uint8_t> values, std::size_t width,
                                   std::size_t rowSize) {
    const std::size_t height = values.size() / width;
    std::vector<std::uint8_t> result(rowSize * height);
    for (std::size_t y = 0; y < height; ++y) {
        for (std::size_t x = 0; x < width; ++x) {
            const unsigned bit = values[y * width + x];
            auto& byte = result[y * rowSize + x / 8];
            byte = static_cast<std::uint8_t>(byte | bit << (7 - x % 8));
        }
    }
    return result;
}

PageSamples twoColours(const Bitmap& page, std::span<const std::uint8_t> values,
                       std::vector<PageImage::Rgb> palette) {
    const auto width = static_cast<std::size_t>(page.width());
    const std::size_t rowSize = (width + 7) / 8;
    return {1, 1, std::move(palette), rowSize, packBits(values, width, rowSize)};
}

PageSamples blackAndWhite(const Bitmap& page) {
    std::vector<std::uint8_t> values(page.pixels().size());
    std::ranges::transform(page.pixels(), values.begin(), [](Rgba pixel) {
        return static_cast<std::uint8_t>(pixel.r == 255 ? 1 : 0);
    });
    return twoColours(page, values, {});
}

PageSamples grey(const Bitmap& page) {
    const auto width = static_cast<std::size_t>(page.width());
    PageSamples samples{1, 8, {}, width, std::vector<std::uint8_t>(page.pixels().size())};
    std::ranges::transform(page.pixels(), samples.bytes.begin(), &Rgba::r);
    return samples;
}

PageSamples rgb(const Bitmap& page) {
    const auto width = static_cast<std::size_t>(page.width());
    PageSamples samples{3, 8, {}, width * 3, std::vector<std::uint8_t>(page.pixels().size() * 3)};
    std::uint8_t* next = samples.bytes.data();
    for (const Rgba pixel : page.pixels()) {
        next[0] = pixel.r;
        next[1] = pixel.g;
        next[2] = pixel.b;
        next += 3;
    }
    return samples;
}

} // namespace

PageSamples reduceToSamples(const Bitmap& page) {
    if (std::ranges::all_of(page.pixels(), isBlackOrWhite)) {
        return blackAndWhite(page);
    }
    if (std::ranges::all_of(page.pixels(), isGrey)) {
        return grey(page);
    }
    Palette palette;
    if (auto values = indices(page, palette)) {
        if (palette.colours().size() <= 2) {
            return twoColours(page, *values, palette.colours());
        }
        return {1, 8, palette.colours(), static_cast<std::size_t>(page.width()),
                std::move(*values)};
    }
    return rgb(page);
}

} // namespace murkwell
