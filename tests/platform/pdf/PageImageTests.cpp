#include "platform/pdf/PageImage.h"

#include <algorithm>
#include <functional>
#include <gtest/gtest.h>
#include <random>
#include <zlib.h>

namespace murkwell {
namespace {

using Packing = PageImage::Packing;

std::vector<std::uint8_t> inflate(const PageImage& image, std::size_t mostBytes) {
    std::vector<std::uint8_t> bytes(mostBytes);
    uLongf length = bytes.size();
    const int result =
        ::uncompress(bytes.data(), &length, reinterpret_cast<const Bytef*>(image.data.data()),
                     image.data.size());
    EXPECT_EQ(result, Z_OK);
    bytes.resize(length);
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

// By the definition of RunLengthDecode; what lacks its end is nothing.
std::vector<std::uint8_t> unpackRuns(const std::vector<std::uint8_t>& packed) {
    std::vector<std::uint8_t> result;
    for (std::size_t i = 0; i + 1 < packed.size();) {
        const std::size_t length = packed[i++];
        if (length < 128) {
            for (std::size_t k = 0; k <= length; ++k) {
                result.push_back(packed.at(i++));
            }
        } else {
            EXPECT_NE(length, 128) << "ends before its end";
            result.insert(result.end(), 257 - length, packed[i++]);
        }
    }
    return packed.back() == 128 ? result : std::vector<std::uint8_t>();
}

// What a viewer would show, by the PDF rules for image streams.
std::vector<Rgba> decode(const PageImage& image) {
    const auto width = static_cast<std::size_t>(image.width);
    const auto height = static_cast<std::size_t>(image.height);
    const auto components = static_cast<std::size_t>(image.components);
    const std::size_t bits = width * components * static_cast<std::size_t>(image.bitsPerComponent);
    const std::size_t rowSize = (bits + 7) / 8;
    auto rows = inflate(image, (rowSize + 1) * height + 2);
    if (image.packing == Packing::rowFilters) {
        rows = unfilter(rows, rowSize, components);
    } else if (image.packing == Packing::runLengths) {
        rows = unpackRuns(rows);
    }
    EXPECT_EQ(rows.size(), rowSize * height);
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

// A grey that follows from the number and from nothing of its neighbours.
Rgba anyGrey(int number) {
    std::mt19937 random(static_cast<unsigned>(number));
    return grey(static_cast<int>(random() & 255));
}

// Letters of many greys, each of them often on the page, nowhere in the same columns again.
BitmapRef text() {
    return painted(600, 600, [](int x, int y) {
        const int place = x + y / 20 * 7;
        const int letter = place / 15 * (y / 20 + 3) % 23;
        const bool ink = place % 15 < 9 && y % 20 < 12;
        return ink ? anyGrey((letter * 20 + y % 20) * 15 + place % 15) : grey(255);
    });
}

TEST(PageImage, PacksRowsInTheWayThatMakesThemSmallest) {
    std::mt19937 random(3);
    const auto smooth = painted(300, 300, [](int x, int y) { return rgb(x / 2, y / 2, 9); });
    const auto noise =
        painted(300, 300, [&](int, int) { return grey(static_cast<int>(random() % 256)); });
    for (const auto& [page, packing] : std::vector<std::pair<BitmapRef, Packing>>{
             {smooth, Packing::rowFilters},
             {text(), Packing::runLengths},
             {noise, Packing::none},
         }) {
        const auto image = encodePageImage(*page);
        ASSERT_TRUE(image);
        EXPECT_EQ(image->packing, packing);
        EXPECT_TRUE(std::ranges::equal(decode(*image), page->pixels()));
    }
}

// Around what one length byte can tell.
TEST(PageImage, RunsOfAnyLengthComeBack) {
    for (const int length : {1, 2, 3, 4, 127, 128, 129, 130, 255, 256, 257, 258, 384, 385}) {
        // Repeated black, then literal greys, each as long as that, and much white about them.
        const auto page = painted(4096, 2, [&](int x, int y) {
            const int place = x - 100 * y;
            const bool ink = place > 0 && place <= 2 * length;
            return !ink ? grey(255) : place <= length ? grey(0) : anyGrey(place);
        });
        const auto image = encodePageImage(*page);
        ASSERT_TRUE(image);
        EXPECT_EQ(image->packing, Packing::runLengths) << length;
        EXPECT_TRUE(std::ranges::equal(decode(*image), page->pixels())) << length;
    }
}

} // namespace
} // namespace murkwell
