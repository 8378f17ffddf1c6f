#include "core/RedactionEngine.h"

#include "core/RandomSource.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace murkwell::RedactionEngine {
namespace {

constexpr Rgba black{0, 0, 0, 255};
constexpr Rgba white{255, 255, 255, 255};

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
};

std::optional<Box> boxOf(const PageRect& rect, const Bitmap& page) {
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
    return Box{*columns, *rows};
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

// A grey drawn from 2^53 + 1 equally likely steps between black and white, both included.
Rgba randomGrey(RandomSource& random) {
    constexpr std::uint64_t steps = (std::uint64_t{1} << 53) + 1;
    // The largest multiple of steps; values from there on would favour the low greys.
    constexpr std::uint64_t unbiasedEnd = UINT64_MAX - UINT64_MAX % steps;
    std::uint64_t value = random.next();
    while (value >= unbiasedEnd) {
        value = random.next();
    }
    const double fraction = static_cast<double>(value % steps) * 0x1p-53;
    const auto level = static_cast<std::uint8_t>(fraction * 255 + 0.5); // rounded; no call
    return {level, level, level, 255};
}

// A mosaic of grey squares, anchored at the lower left corner of the unclipped box.
void fillNoise(Bitmap& page, const Box& box, RandomSource& random) {
    const Extent columns = box.columns.clipped(page.width());
    const Extent rows = box.rows.clipped(page.height());
    const auto blockEnd = [](std::int64_t position, std::int64_t anchor) {
        return anchor + (position - anchor) / blockSide * blockSide + blockSide;
    };
    for (std::int64_t y = rows.first; y < rows.end;) {
        const auto firstRow = rowFromBottom(page, y);
        std::int64_t x = columns.first;
        for (std::int64_t end = blockEnd(x, box.columns.first); x < columns.end; end += blockSide) {
            const Rgba grey = randomGrey(random);
            for (const std::int64_t last = std::min(end, columns.end); x < last; ++x) {
                firstRow[static_cast<std::size_t>(x)] = grey;
            }
        }
        const std::int64_t end = std::min(blockEnd(y, box.rows.first), rows.end);
        while (++y < end) {
            std::ranges::copy(columnsOf(firstRow, columns),
                              columnsOf(rowFromBottom(page, y), columns).begin());
        }
    }
}

void fill(Bitmap& page, const Box& box, RedactionStyle style, RandomSource& random) {
    switch (style) {
    case RedactionStyle::solidBlack:
        return fillSolid(page, box, black);
    case RedactionStyle::solidWhite:
        return fillSolid(page, box, white);
    case RedactionStyle::noise:
        return fillNoise(page, box, random);
    }
}

} // namespace

BitmapRef burn(const Bitmap& page, std::span<const Redaction> redactions, RandomSource& random) {
    const auto burned = Bitmap::copy(page);
    if (!burned) {
        return nullptr;
    }
    for (const Redaction& redaction : redactions) {
        if (const auto box = boxOf(redaction.rect, page)) {
            fill(*burned, *box, redaction.style, random);
        }
    }
    return burned;
}

} // namespace murkwell::RedactionEngine
