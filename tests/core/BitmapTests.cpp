#include "core/Bitmap.h"

#include "core/ParallelFor.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

namespace murkwell {
namespace {

TEST(Bitmap, StartsTransparentAndRowsFollowEachOther) {
    const auto bitmap = Bitmap::create(7, 3);
    ASSERT_TRUE(bitmap);
    EXPECT_EQ(std::ranges::count(bitmap->pixels(), Rgba{0, 0, 0, 0}), 21);
    bitmap->row(2)[6] = {1, 2, 3, 4};
    EXPECT_EQ(bitmap->pixels().back(), (Rgba{1, 2, 3, 4}));
}

// The memory of large ones is cut to size at both ends.
TEST(Bitmap, SizesAroundHugePagesHaveAllTheirPixels) {
    constexpr int pixelsOfHugePage = 1 << 19;
    std::vector<std::shared_ptr<Bitmap>> bitmaps;
    for (const int width :
         {pixelsOfHugePage - 1, pixelsOfHugePage, pixelsOfHugePage + 1, pixelsOfHugePage * 3 / 2,
          pixelsOfHugePage * 3 / 2 + 1, pixelsOfHugePage * 2 - 1, pixelsOfHugePage * 2}) {
        bitmaps.push_back(Bitmap::create(width, 1));
        ASSERT_TRUE(bitmaps.back());
        const auto pixels = bitmaps.back()->pixels();
        EXPECT_EQ(std::ranges::count(pixels, Rgba{}), width);
        std::ranges::fill(pixels, Rgba{1, 2, 3, static_cast<std::uint8_t>(bitmaps.size())});
    }
    for (std::size_t i = 0; i < bitmaps.size(); ++i) {
        const Rgba own{1, 2, 3, static_cast<std::uint8_t>(i + 1)};
        EXPECT_EQ(std::ranges::count(bitmaps[i]->pixels(), own), bitmaps[i]->width());
    }
}

TEST(Bitmap, CopyIsEqualAndSeparate) {
    const auto original = Bitmap::create(2000, 700); // large enough for huge pages
    ASSERT_TRUE(original);
    original->row(699)[1999] = {9, 8, 7, 255};
    const auto copy = Bitmap::copy(*original);
    ASSERT_TRUE(copy);
    EXPECT_TRUE(std::ranges::equal(copy->pixels(), original->pixels()));
    original->row(0)[0] = {1, 1, 1, 1};
    EXPECT_EQ(copy->row(0)[0], (Rgba{0, 0, 0, 0}));
}

TEST(Bitmap, NoneForAnEmptyOrImpossibleSize) {
    constexpr int most = std::numeric_limits<int>::max();
    for (const auto& [width, height] : std::vector<std::pair<int, int>>{
             {0, 0}, {0, 5}, {5, 0}, {-1, 5}, {most, most}, {most, 1}, {1 << 15, (1 << 14) + 1}}) {
        EXPECT_FALSE(Bitmap::create(width, height)) << width << " x " << height;
    }
}

TEST(Bitmap, RefusesBeforeTheMachineRunsOutAndRecovers) {
    // Untouched, so that the test itself takes no memory.
    std::vector<BitmapRef> many;
    while (const auto next = Bitmap::create(1 << 15, 1 << 14)) {
        many.push_back(next);
        ASSERT_LT(many.size(), 10000U) << "never refused";
    }
    EXPECT_FALSE(PixelShare::take(std::size_t{2} << 30)) << "what is lent counts too";
    many.clear();
    EXPECT_TRUE(Bitmap::create(64, 64));
    EXPECT_FALSE(PixelShare::take(std::numeric_limits<std::size_t>::max()));
    EXPECT_TRUE(PixelShare::take(1));
}

// Also when some of them throw, which only the answer tells.
TEST(ParallelFor, EveryJobRunsOnce) {
    for (const std::size_t count : {0U, 1U, 2U, 1000U}) {
        for (const std::size_t throwing : {count, count / 2}) {
            std::vector<int> runs(count, 0);
            const bool allDone = parallelFor(count, [&](std::size_t i) {
                ++runs[i];
                if (i >= throwing) {
                    throw std::bad_alloc();
                }
            });
            EXPECT_EQ(std::ranges::count(runs, 1), static_cast<std::ptrdiff_t>(count));
            EXPECT_EQ(allDone, throwing == count);
        }
    }
}

} // namespace
} // namespace murkwell
