#include "core/RedactionEngine.h"

#include "core/FillColours.h"
#include "core/RandomSource.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <new>
#include <numeric>
#include <optional>
#include <unordered_set>
#include <vector>

namespace murkwell::RedactionEngine {
namespace {

constexpr std::uint8_t black = 0;
constexpr std::uint8_t white = 255;

// Side of a noise block, in pixels.
constexpr std::int64_t blockSide = 5;

// Whole pixels [first, end) along one axis; may reach past the page.
struct Extent {
    std::int64_t first;
    std::int64_t end;

    [[nodiscard]] Extent clipped(std::int64_t length) const {
        return {std::clamp<std::int64_t>(first, 0, length),
                std::clamp<std::int64_t>(end, 0, length)};
    }
};

// Rounds start ... start + length outward. None when nothing is left or a number is not finite.
std::optional<Extent> roundedOutward(double start, double length) {
    const double first = std::floor(start);
    const double end = std::ceil(start + length);
    if (!(end - first >= 1)) {
        return std::nullopt;
    }
    // Far beyond any page, yet exact in a double and safe in the sums below.
    constexpr double farAway = 1e12;
    return Extent{static_cast<std::int64_t>(std::clamp(first, -farAway, farAway)),
                  static_cast<std::int64_t>(std::clamp(end, -farAway, farAway))};
}

// A box on the pixel grid. Columns count from the left. Rows count from the bottom of the page, up:
// that is where the noise mosaic is anchored.
struct Box {
    Extent columns;
    Extent rows;
    RedactionStyle style;
};

std::optional<Box> boxOf(const Redaction& redaction, const Bitmap& page) {
    const PageRect& rect = redaction.rect;
    const double width = page.width();
    const double height = page.height();
    // A zero side covers nothing, also where its edge falls inside a pixel.
    if (rect.width == 0 || rect.height == 0) {
        return std::nullopt;
    }
    const auto columns = roundedOutward(rect.minX() * width, std::abs(rect.width) * width);
    const auto rows = roundedOutward(height - rect.maxY() * height, std::abs(rect.height) * height);
    if (!columns || !rows) {
        return std::nullopt;
    }
    return Box{*columns, *rows, redaction.style};
}

std::span<Rgba> rowFromBottom(Bitmap& page, std::int64_t y) {
    return page.row(static_cast<int>(page.height() - 1 - y));
}

std::span<Rgba> columnsOf(std::span<Rgba> row, const Extent& columns) {
    return row.subspan(static_cast<std::size_t>(columns.first),
                       static_cast<std::size_t>(columns.end - columns.first));
}

void fillSolid(Bitmap& page, const Box& box, Rgba colour) {
    const Extent columns = box.columns.clipped(page.width());
    const Extent rows = box.rows.clipped(page.height());
    for (std::int64_t y = rows.first; y < rows.end; ++y) {
        std::ranges::fill(columnsOf(rowFromBottom(page, y), columns), colour);
    }
}

// Drawn from 2^53 + 1 equally likely steps between black and white, both included.
std::uint8_t randomLevel(RandomSource& random) {
    constexpr std::uint64_t steps = (std::uint64_t{1} << 53) + 1;
    // The largest multiple of steps; values from there on would favour the low greys.
    constexpr std::uint64_t unbiasedEnd = UINT64_MAX - UINT64_MAX % steps;
    std::uint64_t value = random.next();
    while (value >= unbiasedEnd) {
        value = random.next();
    }
    const double fraction = static_cast<double>(value % steps) * 0x1p-53;
    return static_cast<std::uint8_t>(fraction * 255 + 0.5); // rounded; no call
}

// A mosaic of squares, anchored at the lower left corner of the unclipped box.
void fillNoise(Bitmap& page, const Box& box, const FillColours& colours, RandomSource& random) {
    const Extent columns = box.columns.clipped(page.width());
    const Extent rows = box.rows.clipped(page.height());
    const auto blockEnd = [](std::int64_t position, std::int64_t anchor) {
        return anchor + (position - anchor) / blockSide * blockSide + blockSide;
    };
    for (std::int64_t y = rows.first; y < rows.end;) {
        const auto firstRow = rowFromBottom(page, y);
        std::int64_t x = columns.first;
        for (std::int64_t end = blockEnd(x, box.columns.first); x < columns.end; end += blockSide) {
            const Rgba colour = colours[randomLevel(random)];
            for (const std::int64_t last = std::min(end, columns.end); x < last; ++x) {
                firstRow[static_cast<std::size_t>(x)] = colour;
            }
        }
        const std::int64_t end = std::min(blockEnd(y, box.rows.first), rows.end);
        while (++y < end) {
            std::ranges::copy(columnsOf(firstRow, columns),
                              columnsOf(rowFromBottom(page, y), columns).begin());
        }
    }
}

void fill(Bitmap& page, const Box& box, const FillColours& colours, RandomSource& random) {
    switch (box.style) {
    case RedactionStyle::solidBlack:
        return fillSolid(page, box, colours[black]);
    case RedactionStyle::solidWhite:
        return fillSolid(page, box, colours[white]);
    case RedactionStyle::noise:
        return fillNoise(page, box, colours, random);
    }
}

std::vector<Box> boxesOf(std::span<const Redaction> redactions, const Bitmap& page) {
    std::vector<Box> boxes;
    for (const Redaction& redaction : redactions) {
        if (const auto box = boxOf(redaction, page)) {
            boxes.push_back(*box);
        }
    }
    return boxes;
}

// What every pixel is but those of one colour; no more than one beyond the limit.
std::vector<Rgba> coloursWithout(Rgba excluded, const Bitmap& page, std::size_t limit) {
    std::unordered_set<std::uint32_t> seen;
    std::vector<Rgba> colours;
    Rgba last = excluded;
    for (const Rgba& pixel : page.pixels()) {
        if (pixel == last || pixel == excluded) {
            continue;
        }
        last = pixel;
        if (seen.insert(std::bit_cast<std::uint32_t>(pixel)).second) {
            colours.push_back(pixel);
        }
        if (colours.size() > limit) {
            break;
        }
    }
    return colours;
}

std::vector<std::uint8_t> levelsOf(const std::vector<Box>& boxes) {
    const auto has = [&](RedactionStyle style) {
        return std::ranges::count(boxes, style, &Box::style) > 0;
    };
    if (has(RedactionStyle::noise)) {
        std::vector<std::uint8_t> levels(FillColours().size());
        std::iota(levels.begin(), levels.end(), std::uint8_t{0});
        return levels;
    }
    std::vector<std::uint8_t> levels;
    if (has(RedactionStyle::solidBlack)) {
        levels.push_back(black);
    }
    if (has(RedactionStyle::solidWhite)) {
        levels.push_back(white);
    }
    return levels;
}

// Wipes what the boxes cover before it looks at the page.
FillColours limitedColours(Bitmap& page, const std::vector<Box>& boxes, std::size_t mostColours) {
    constexpr Rgba covered{255, 255, 255, 0}; // no premultiplied pixel is that
    for (const Box& box : boxes) {
        fillSolid(page, box, covered);
    }
    return fillColoursBeside(coloursWithout(covered, page, mostColours), levelsOf(boxes),
                             mostColours);
}

} // namespace

BitmapRef burn(const Bitmap& page, std::span<const Redaction> redactions, RandomSource& random,
               std::size_t mostColours) {
    const auto burned = Bitmap::copy(page);
    if (!burned) {
        return nullptr;
    }
    try {
        const std::vector<Box> boxes = boxesOf(redactions, page);
        const FillColours colours =
            mostColours == anyNumber ? allGreys() : limitedColours(*burned, boxes, mostColours);
        for (const Box& box : boxes) {
            fill(*burned, box, colours, random);
        }
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
    return burned;
}

} // namespace murkwell::RedactionEngine
