#include "core/RedactionEngine.h"

#include "core/RandomSource.h"
#include "tests/support/ScriptedRandomSource.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <gtest/gtest.h>
#include <map>
#include <random>
#include <vector>

namespace murkwell {
namespace {

constexpr Rgba black{0, 0, 0, 255};
constexpr Rgba white{255, 255, 255, 255};

// Every pixel differs from its neighbours and from every fill; some are translucent.
std::shared_ptr<Bitmap> patterned(int width, int height) {
    auto page = Bitmap::create(width, height);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const auto alpha = static_cast<std::uint8_t>((x + y) % 3 == 0 ? 200 : 255);
            page->row(y)[static_cast<std::size_t>(x)] = {static_cast<std::uint8_t>(x % 100 + 1),
                                                         static_cast<std::uint8_t>(y % 100 + 101),
                                                         77, alpha};
        }
    }
    return page;
}

Redaction box(PageRect rect, RedactionStyle style = RedactionStyle::solidBlack) {
    return {Uuid{}, rect, style, false};
}

BitmapRef burn(const Bitmap& page, const std::vector<Redaction>& boxes) {
    SystemRandomSource random;
    return RedactionEngine::burn(page, boxes, random);
}

// The definition, a pixel at a time and in the coordinates of a bottom-up surface: the last box
// whose outward-rounded rectangle holds the pixel, or none.
const Redaction* topmostAt(const Bitmap& page, const std::vector<Redaction>& boxes, int x, int y) {
    const double w = page.width();
    const double h = page.height();
    const double left = x;
    const double bottom = page.height() - 1 - y;
    const Redaction* top = nullptr;
    for (const Redaction& candidate : boxes) {
        const PageRect& r = candidate.rect;
        const double x0 = r.minX() * w;
        const double y0 = h - r.maxY() * h;
        const double width = std::abs(r.width) * w;
        const double height = std::abs(r.height) * h;
        if (width > 0 && height > 0 && left >= std::floor(x0) && left < std::ceil(x0 + width) &&
            bottom >= std::floor(y0) && bottom < std::ceil(y0 + height)) {
            top = &candidate;
        }
    }
    return top;
}

TEST(Burn, AgreesWithThePerPixelDefinitionOnRandomPagesAndBoxes) {
    std::mt19937 generator(20);
    std::uniform_int_distribution<int> side(1, 40);
    std::uniform_real_distribution<double> position(-0.4, 1.2);
    std::uniform_real_distribution<double> extent(-0.5, 0.9);
    for (int round = 0; round < 400; ++round) {
        const auto page = patterned(side(generator), side(generator));
        std::vector<Redaction> boxes;
        for (int i = 0; i < round % 5; ++i) {
            boxes.push_back(box(
                {position(generator), position(generator), extent(generator), extent(generator)},
                allRedactionStyles[generator() % 3]));
        }
        const auto burned = burn(*page, boxes);
        ASSERT_TRUE(burned);
        for (int y = 0; y < page->height(); ++y) {
            for (int x = 0; x < page->width(); ++x) {
                const Rgba pixel = burned->row(y)[static_cast<std::size_t>(x)];
                const Redaction* top = topmostAt(*page, boxes, x, y);
                if (top == nullptr) {
                    ASSERT_EQ(pixel, page->row(y)[static_cast<std::size_t>(x)]);
                } else if (top->style == RedactionStyle::noise) {
                    ASSERT_TRUE(pixel.r == pixel.g && pixel.g == pixel.b && pixel.a == 255);
                } else {
                    ASSERT_EQ(pixel, top->style == RedactionStyle::solidBlack ? black : white);
                }
            }
        }
    }
}

TEST(Burn, CountsOfCoveredPixels) {
    struct Case {
        const char* what;
        int width, height;
        PageRect rect;
        int covered;
    };
    for (const Case& c : std::vector<Case>{
             {"upper half", 100, 40, {0, 0, 1, 0.5}, 2000},
             {"whole page", 1, 1, {0, 0, 1, 1}, 1},
             {"a tenth of a pixel", 10, 10, {0.52, 0.52, 0.01, 0.01}, 1},
             {"across a pixel corner", 10, 10, {0.485, 0.485, 0.03, 0.03}, 4},
             {"zero width inside a pixel", 10, 10, {0.55, 0.1, 0, 0.5}, 0},
             {"beside the page", 10, 10, {1.5, 0, 0.5, 1}, 0},
             {"drawn up and left", 10, 10, {0.5, 0.5, -0.25, -0.25}, 9},
             {"far over every edge", 10, 10, {-1e9, -1e9, 2e9, 2e9}, 100},
             {"not a number", 10, 10, {std::nan(""), 0, 1, 1}, 0},
         }) {
        const auto burned = burn(*patterned(c.width, c.height), {box(c.rect)});
        ASSERT_TRUE(burned);
        EXPECT_EQ(std::ranges::count(burned->pixels(), black), c.covered) << c.what;
    }
}

TEST(Burn, UpperHalfIsTheTopRows) {
    const auto burned = burn(*patterned(100, 40), {box({0, 0, 1, 0.5})});
    EXPECT_EQ(std::ranges::count(burned->row(19), black), 100);
    EXPECT_EQ(std::ranges::count(burned->row(20), black), 0);
}

TEST(Noise, BlocksAreAnchoredAtTheLowerLeftCornerOfTheBox) {
    // 12 x 7 pixels at column 2, rows 1 ... 7 from the top of a 20 x 10 page.
    const PageRect rect{2 / 20.0, 1 / 10.0, 12 / 20.0, 7 / 10.0};
    constexpr std::uint64_t step = std::uint64_t{1} << 50; // an eighth of the way to white
    ScriptedRandomSource random({step, 2 * step, 3 * step, 4 * step, 5 * step, 6 * step});
    const auto burned = RedactionEngine::burn(
        *patterned(20, 10), std::vector{box(rect, RedactionStyle::noise)}, random);
    ASSERT_TRUE(burned);
    EXPECT_EQ(random.drawn, 6U);
    for (int y = 1; y <= 7; ++y) {
        for (int x = 2; x < 14; ++x) {
            // Rows from the bottom edge of the box: the lower five, then the upper two.
            const int block = (7 - y) / 5 * 3 + (x - 2) / 5;
            const int level = static_cast<int>(std::lround((block + 1) * 255 / 8.0));
            EXPECT_EQ(burned->row(y)[static_cast<std::size_t>(x)].r, level) << x << ", " << y;
        }
    }
}

TEST(Noise, AnchorOutsideThePageStillDecidesTheBlocks) {
    // The box starts 3 pixels left of the page: the first block shows its last 2 columns.
    ScriptedRandomSource random({0, std::uint64_t{1} << 52});
    const auto burned = RedactionEngine::burn(
        *patterned(10, 5), std::vector{box({-0.3, 0, 1.0, 1}, RedactionStyle::noise)}, random);
    ASSERT_TRUE(burned);
    const auto row = burned->row(0);
    EXPECT_EQ(row[1].r, 0);
    EXPECT_EQ(row[2].r, 128);
    EXPECT_EQ(row[6].r, 128);
    EXPECT_EQ(row[7], patterned(10, 5)->row(0)[7]);
}

TEST(Noise, BothEndsAreReachedAndBiasedDrawsAreThrownAway) {
    constexpr std::uint64_t steps = (std::uint64_t{1} << 53) + 1;
    ScriptedRandomSource random({UINT64_MAX, steps - 1, 0});
    const auto burned = RedactionEngine::burn(
        *patterned(10, 5), std::vector{box({0, 0, 1, 1}, RedactionStyle::noise)}, random);
    EXPECT_EQ(burned->row(0)[0], white);
    EXPECT_EQ(burned->row(0)[5], black);
    EXPECT_EQ(random.drawn, 3U);
}

using Colour = Rgba (*)(int i);

Rgba violet(int i) {
    return {200, static_cast<std::uint8_t>(i), static_cast<std::uint8_t>(255 - i), 255};
}

Rgba clearOrViolet(int i) {
    return i == 0 ? Rgba{0, 0, 0, 0} : violet(i);
}

Rgba grey(int i) {
    const auto level = static_cast<std::uint8_t>(i);
    return {level, level, level, 255};
}

int squaredDistance(Rgba a, Rgba b) {
    return (a.r - b.r) * (a.r - b.r) + (a.g - b.g) * (a.g - b.g) + (a.b - b.b) * (a.b - b.b);
}

// 160 x 100; the lower half is what the boxes below will hide.
std::shared_ptr<Bitmap> halves(Colour colour, int count, int hidden) {
    auto page = Bitmap::create(160, 100);
    for (int i = 0; i < 16000; ++i) {
        page->pixels()[static_cast<std::size_t>(i)] =
            i < 8000 ? colour(i % count) : Rgba{static_cast<std::uint8_t>(i % hidden), 9, 9, 255};
    }
    return page;
}

TEST(LimitedColours, BoxesTakeWhatTheRestOfThePageHasOrHasRoomFor) {
    constexpr std::size_t most = 256;
    const std::vector boxes{box({0, 0.5, 0.5, 0.1}),
                            box({0.5, 0.5, 0.5, 0.1}, allRedactionStyles[1]),
                            box({0, 0.6, 1, 0.4}, RedactionStyle::noise)};
    std::vector<std::uint64_t> script; // every level once, one for each block of the noise
    for (std::uint64_t block = 0; block < 256; ++block) {
        script.push_back(block * 37 % 256 * (std::uint64_t{1} << 53) / 255);
    }
    struct Case {
        Colour colour;
        int count;
        int exactGreys;
    };
    for (const Case& c : {Case{violet, 256, 0},
                          {clearOrViolet, 256, 0},
                          {grey, 256, 256},
                          {violet, 255, 1},
                          {violet, 250, 6},
                          {violet, 2, 254},
                          {clearOrViolet, 1, 255}}) {
        ScriptedRandomSource random(script);
        const auto page = halves(c.colour, c.count, 1);
        const auto burned = RedactionEngine::burn(*page, boxes, random, most);
        ASSERT_TRUE(std::ranges::equal(burned->pixels().first(8000), page->pixels().first(8000)));

        ScriptedRandomSource again(script);
        const auto other =
            RedactionEngine::burn(*halves(c.colour, c.count, 200), boxes, again, most);
        EXPECT_TRUE(std::ranges::equal(burned->pixels(), other->pixels())) << c.count;

        std::map<std::uint32_t, Rgba> colours;
        for (const Rgba& pixel : burned->pixels()) {
            colours[std::bit_cast<std::uint32_t>(pixel)] = pixel;
        }
        EXPECT_LE(colours.size(), most) << c.count;
        const auto expectNearest = [&](std::size_t x, int y, Rgba meant) {
            const Rgba pixel = burned->row(y)[x];
            ASSERT_EQ(pixel.a, 255);
            for (const auto& [_, available] : colours) {
                ASSERT_TRUE(available.a == 0 ||
                            squaredDistance(pixel, meant) <= squaredDistance(available, meant))
                    << c.count;
            }
        };
        expectNearest(0, 50, black);
        expectNearest(80, 50, white);
        int exact = 0;
        for (std::size_t block = 0; block < 256; ++block) {
            const Rgba meant = grey(static_cast<int>(block * 37 % 256));
            const auto x = block % 32 * 5;
            const int y = 99 - static_cast<int>(block / 32) * 5;
            expectNearest(x, y, meant);
            exact += burned->row(y)[x] == meant ? 1 : 0;
        }
        EXPECT_EQ(exact, c.exactGreys) << c.count;
    }
}

TEST(Noise, GreysAreEvenlySpreadAndNeverRepeatBetweenBurns) {
    const auto page = patterned(1280, 1000);
    const std::vector boxes{box({0, 0, 1, 1}, RedactionStyle::noise)};
    const auto first = burn(*page, boxes);
    const auto second = burn(*page, boxes);
    std::array<double, 16> counts{};
    int equal = 0;
    int blocks = 0;
    for (int y = 2; y < 1000; y += 5) {
        for (std::size_t x = 2; x < 1280; x += 5) {
            ++counts[first->row(y)[x].r / 16];
            equal += first->row(y)[x] == second->row(y)[x] ? 1 : 0;
            ++blocks;
        }
    }
    // Chi-squared with 15 degrees of freedom stays below 50 but once in 85,000 runs.
    double chiSquared = 0;
    for (const double count : counts) {
        chiSquared += (count - blocks / 16.0) * (count - blocks / 16.0) / (blocks / 16.0);
    }
    EXPECT_LT(chiSquared, 50);
    EXPECT_LT(equal, blocks / 100);
}

} // namespace
} // namespace murkwell
