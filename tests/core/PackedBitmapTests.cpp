#include "core/PackedBitmap.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>

namespace murkwell {
namespace {

// A page of which so many rows are noise and the others white, but for a few letters.
std::shared_ptr<Bitmap> page(int width, int height, int noisyRows) {
    auto bitmap = Bitmap::create(width, height);
    std::ranges::fill(bitmap->pixels(), Rgba{255, 255, 255, 255});
    std::mt19937 random(7);
    for (int y = 0; y < noisyRows; ++y) {
        for (Rgba& pixel : bitmap->row(y)) {
            const auto bits = random();
            pixel = {static_cast<std::uint8_t>(bits), static_cast<std::uint8_t>(bits >> 8),
                     static_cast<std::uint8_t>(bits >> 16), static_cast<std::uint8_t>(bits >> 24)};
        }
    }
    bitmap->row(height - 1)[static_cast<std::size_t>(width - 1)] = {1, 2, 3, 4};
    return bitmap;
}

TEST(PackedBitmap, UnpacksToTheSamePixelsWhateverTheyAre) {
    struct Case {
        int width, height, noisyRows;
        double most; // bytes in memory, as a share of the pixels'
    };
    for (const Case& c : {Case{1, 1, 0, 1}, Case{1224, 1584, 0, 0.01}, Case{1224, 1584, 400, 0.3},
                          Case{1224, 1584, 1584, 1}, Case{40000, 3, 1, 0.4}}) {
        const auto original = page(c.width, c.height, c.noisyRows);
        const auto packed = PackedBitmap::pack(Bitmap::copy(*original));
        ASSERT_TRUE(packed);
        EXPECT_EQ(packed->size(), (PixelSize{c.width, c.height}));
        EXPECT_LE(static_cast<double>(packed->sizeInBytes()),
                  c.most * static_cast<double>(original->pixels().size_bytes()))
            << c.width << " x " << c.height;
        const BitmapRef unpacked = packed->unpack();
        ASSERT_TRUE(unpacked);
        EXPECT_TRUE(std::ranges::equal(unpacked->pixels(), original->pixels()));
    }
    EXPECT_FALSE(PackedBitmap::pack(nullptr));
}

TEST(PackedBitmap, IsUnpackedOnceForAllWhoLookAndLetGoByTheLast) {
    const auto packed = PackedBitmap::pack(page(500, 500, 10));
    BitmapRef first = packed->unpack();
    BitmapRef second = packed->unpack();
    EXPECT_EQ(first, second);
    const std::weak_ptr<const Bitmap> watched = first;
    const auto contents = first->contents();
    first.reset();
    EXPECT_FALSE(watched.expired());
    second.reset();
    EXPECT_TRUE(watched.expired());
    EXPECT_EQ(packed->unpack()->contents(), contents);
    EXPECT_NE(PackedBitmap::pack(page(500, 500, 10))->unpack()->contents(), contents);
}

} // namespace
} // namespace murkwell
