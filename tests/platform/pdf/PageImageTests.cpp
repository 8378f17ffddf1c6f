#include "platform/pdf/PageImage.h"

#include <algorithm>
#include <functional>
#include <gtest/gtest.h>
#include <random>
#include <zlib.h>

namespace murkwell {
namespace {

std::vector<std::uint8_t> inflate(const PageImage& image, std::size_t size) {
    std::vector<std::uint8_t> bytes(size);
    uLongf length = size;
    const int result =
        ::uncompress(bytes.data(), &length, reinterpret_cast<const Bytef*>(image.data.data()),
                     image.data.size());
    EXPECT_EQ(result, Z_OK);
    EXPECT_EQ(length, size);
    return bytes;
}

// Undoes the PNG filters as their definition states it, a byte at a time.
std::vector<std::uint8_t> unfilter(const std::vector<std::uint8_t>& rows, std::size_t rowSize,
                                   std::size_t pixelSize) {
    std::vector<std::uint8_t> result;
    std::vector<std::uint8_t> above(rowSize);
    for (std::size_t start = 0; start < rows.size(); start += rowSize + 1) {
        std::vector<std::uint8_t> row(rowSize);
        for (std::size_t i = 0; i < rowSize; ++i) {
            const int a = i >= pixelSize ? row[i - pixelSize] : 0;
            const int b = above[i];
            const int c = i >= pixelSize ? above[i - pixelSize] : 0;
            const int p = a + b - c;
            const int pa = std::abs(p - a);
            const int pb = std::abs(p - b);
            const int pc = std::abs(p - c);
            const int nearest = pa <= pb && pa <= pc ? a : pb <= pc ? b : c;
            const int predictions[] = {0, a, b, (a + b) / 2, nearest};
            row[i] = static_cast<std::uint8_t>(rows[start + 1 + i] + predictions[rows[start]]);
        }
        result.insert(result.end(), row.begin(), row.end());
        above = row;
    }
    return result;
}

// What a viewer would show, by the PDF rules for image streams.
std::vector<Rgba> decode(const PageImage& image) {
    const auto width = static_cast<std::size_t>(image.width);
    const auto height = static_cast<std::size_t>(image.height);
    const auto components = static_cast<std::size_t>(image.components);
    const std::size_t bits = width * components * static_cast<std::size_t>(image.bitsPerComponent);
    const std::size_t rowSize = (bits + 7) / 8;
    auto rows = inflate(image, (rowSize + (image.predicted ? 1 : 0)) * height);
    if (image.predicted) {
        rows = unfilter(rows, rowSize, components);
    }
    std::vector<Rgba> pixels;
    for (std::size_t y = 0; y < height; ++y) {
        const std::uint8_t* row = rows.data() + y * rowSize;
        for (std::size_t x = 0; x < width; ++x) {
            if (components == 3) {
                pixels.push_back({row[3 * x], row[3 * x + 1], row[3 * x + 2], 255});
                continue;
            }
            const bool oneBit = image.bitsPerComponent == 1;
            const int value = oneBit ? row[x / 8] >> (7 - x % 8) & 1 : row[x];
            if (image.palette.empty()) {
                const auto grey = static_cast<std::uint8_t>(oneBit ? value * 255 : value);
                pixels.push_back({grey, grey, grey, 255});
            } else {
                const auto& colour = image.palette.at(static_cast<std::size_t>(value));
                pixels.push_back({colour[0], colour[1], colour[2], 255});
            }
        }
    }
    return pixels;
}

using Painter = std::function<Rgba(int x, int y)>;

BitmapRef painted(int width, int height, const Painter& painter) {
    const auto page = Bitmap::create(width, height);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            page->row(y)[static_cast<std::size_t>(x)] = painter(x, y);
        }
    }
    return page;
}

Rgba rgb(int r, int g, int b) {
    return {static_cast<std::uint8_t>(r), static_cast<std::uint8_t>(g),
            static_cast<std::uint8_t>(b), 255};
}

Rgba grey(int level) {
    return rgb(level, level, level);
}

TEST(PageImage, HoldsEveryPixelInTheCheapestForm) {
    std::mt19937 random(7);
    struct Case {
        const char* what;
        Painter painter;
        int components;
        int bitsPerComponent;
        std::size_t colours;
    };
    for (const Case& c : std::vector<Case>{
             {"black and white", [](int x, int y) { return grey((x ^ y) % 3 ? 255 : 0); }, 1, 1, 0},
             {"all white", [](int, int) { return grey(255); }, 1, 1, 0},
             {"two colours", [](int x, int) { return x % 5 ? rgb(9, 8, 7) : grey(4); }, 1, 1, 2},
             {"grey", [](int x, int y) { return grey((x * 7 + y) % 256); }, 1, 8, 0},
             {"grey noise", [&](int, int) { return grey(static_cast<int>(random() % 256)); }, 1, 8,
              0},
             {"256 colours", [](int x, int y) { return rgb((x + y * 101) % 256, 1, 2); }, 1, 8,
              256},
             {"257 colours",
              [](int x, int y) {
                  const int n = (x + y * 101) % 257;
                  return rgb(n % 256, n / 256, 2);
              },
              3, 8, 0},
             {"a smooth photograph", [](int x, int y) { return rgb(2 * x, 2 * y, (x + y) % 256); },
              3, 8, 0},
             {"colour noise",
              [&](int, int) {
                  const auto bits = random();
                  return rgb(bits & 255, bits >> 8 & 255, bits >> 16 & 255);
              },
              3, 8, 0},
         }) {
        const auto page = painted(101, 67, c.painter);
        const auto image = encodePageImage(*page);
        ASSERT_TRUE(image) << c.what;
        EXPECT_EQ(image->components, c.components) << c.what;
        EXPECT_EQ(image->bitsPerComponent, c.bitsPerComponent) << c.what;
        EXPECT_EQ(image->palette.size(), c.colours) << c.what;
        EXPECT_TRUE(std::ranges::equal(decode(*image), page->pixels())) << c.what;
    }
}

TEST(PageImage, SizesThatDoNotFillAByteOrABand) {
    for (const auto& [width, height] :
         std::vector<std::pair<int, int>>{{1, 1}, {7, 1}, {8, 3}, {9, 2}, {1, 500}, {3, 241}}) {
        const auto twoLevels =
            painted(width, height, [](int x, int y) { return grey((x + y) % 2 ? 255 : 0); });
        const auto many = painted(width, height, [](int x, int y) { return rgb(x, y % 256, 3); });
        EXPECT_TRUE(std::ranges::equal(decode(*encodePageImage(*twoLevels)), twoLevels->pixels()));
        EXPECT_TRUE(std::ranges::equal(decode(*encodePageImage(*many)), many->pixels()));
    }
}

TEST(PageImage, FiltersRowsOnlyWhereThatMakesThemSmaller) {
    const auto smooth =
        encodePageImage(*painted(300, 300, [](int x, int y) { return rgb(x / 2, y / 2, 9); }));
    const auto text = encodePageImage(*painted(300, 300, [](int x, int y) {
        return grey(x % 50 < 6 && y % 30 < 9 ? (x * y) % 4 * 60 : 255);
    }));
    EXPECT_TRUE(smooth->predicted);
    EXPECT_FALSE(text->predicted);
}

} // namespace
} // namespace murkwell
