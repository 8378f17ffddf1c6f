#include "ui/CanvasGeometry.h"

#include "ui/HatchLines.h"
#include "ui/NoisePreview.h"

#include <gtest/gtest.h>

#include <set>

namespace murkwell {
namespace {

void expectNear(const CanvasRect& rect, const CanvasRect& expected) {
    EXPECT_NEAR(rect.x, expected.x, 1e-9);
    EXPECT_NEAR(rect.y, expected.y, 1e-9);
    EXPECT_NEAR(rect.width, expected.width, 1e-9);
    EXPECT_NEAR(rect.height, expected.height, 1e-9);
}

TEST(CanvasGeometry, PageIsFittedCentredWithMargins) {
    expectNear(fittedRect(1000, 500, {800, 600}), {24, 112, 752, 376});
    expectNear(fittedRect(10, 10, {1000, 1000}), {24, 24, 952, 952}); // enlarged
    expectNear(fittedRect(500, 1000, {600, 800}), {112, 24, 376, 752});
}

TEST(CanvasGeometry, TinyCanvasStillShowsThePage) {
    expectNear(fittedRect(1000, 500, {40, 40}), {19.5, 19.75, 1, 0.5});
}

TEST(CanvasGeometry, NothingIsFittedWithoutExtent) {
    for (const auto& [w, h, size] : {std::tuple{0.0, 5.0, CanvasSize{9, 9}},
                                     {5.0, -1.0, {9, 9}},
                                     {5.0, 5.0, {0, 9}},
                                     {5.0, 5.0, {9, 0}}}) {
        EXPECT_EQ(fittedRect(w, h, size), CanvasRect{});
    }
    EXPECT_EQ(norm({3, 4}, {}), PagePoint{});
}

TEST(CanvasGeometry, PointsBesideThePageBelongToItsEdge) {
    const CanvasRect fit{100, 50, 200, 400};
    EXPECT_EQ(norm({200, 150}, fit), (PagePoint{0.5, 0.25}));
    EXPECT_EQ(norm({99, 451}, fit), (PagePoint{0, 1}));
    EXPECT_EQ(norm({301, 49}, fit), (PagePoint{1, 0}));
}

TEST(CanvasGeometry, BoxIsSeenWhereItLiesOnThePage) {
    expectNear(viewRect({0.5, 0.25, 0.1, 0.5}, {100, 50, 200, 400}), {200, 150, 20, 200});
}

TEST(CanvasGeometry, CornersHaveNames) {
    std::set<std::string_view> names;
    for (const Corner each : allCorners) {
        EXPECT_EQ(corner(rawValue(each)), each);
        names.insert(rawValue(each));
    }
    EXPECT_EQ(names,
              (std::set<std::string_view>{"topLeft", "topRight", "bottomLeft", "bottomRight"}));
    EXPECT_EQ(corner("TopLeft"), std::nullopt);
}

// Every corner against the edges written down one by one: dragged by a quarter of the page to the
// right and down.
TEST(CanvasGeometry, CornerMovesItsTwoEdges) {
    const CanvasRect fit{0, 0, 400, 800};
    const PageRect origin{0.25, 0.25, 0.5, 0.25};
    const std::pair<Corner, PageRect> expected[] = {
        {Corner::topLeft, {0.5, 0.5, 0.25, 0}},
        {Corner::topRight, {0.25, 0.5, 0.75, 0}},
        {Corner::bottomLeft, {0.5, 0.25, 0.25, 0.5}},
        {Corner::bottomRight, {0.25, 0.25, 0.75, 0.5}},
    };
    for (const auto& [held, rect] : expected) {
        EXPECT_EQ(resized(origin, held, {100, 200}, fit), rect) << rawValue(held);
    }
}

TEST(CanvasGeometry, CornerDraggedPastTheOppositeOneFlipsTheBox) {
    const PageRect flipped =
        resized({0.25, 0.25, 0.25, 0.25}, Corner::topLeft, {300, 300}, {0, 0, 400, 400});
    EXPECT_EQ(flipped, (PageRect{0.5, 0.5, 0.5, 0.5}));
}

TEST(HatchLines, CoverTheFrame) {
    const auto starts = HatchLines::starts(100, 50);
    EXPECT_EQ(starts.front(), -50);
    EXPECT_EQ(starts.back(), 94);
    for (double x = 0; x <= 100; x += 0.5) {
        for (double y = 0; y <= 50; y += 0.5) {
            const bool isNear = std::any_of(starts.begin(), starts.end(), [&](double start) {
                return std::abs(start + y - x) <= 6;
            });
            EXPECT_TRUE(isNear) << x << ", " << y;
        }
    }
}

// Figures from the same recipe in Python, whose integers do not wrap by themselves.
TEST(NoisePreview, IsAFixedPattern) {
    struct Square {
        std::uint64_t column;
        std::uint64_t row;
        int level; // of 55
    };
    const Square expected[] = {
        {0U, 0U, 0},           {1U, 0U, 10},
        {0U, 1U, 3},           {1U, 1U, 18},
        {5U, 3U, 40},          {100U, 7U, 12},
        {7U, 100U, 22},        {399U, 299U, 7},
        {1073741824U, 7U, 21}, {1099511627776U, 2199023255552U, 35},
    };
    for (const Square& square : expected) {
        EXPECT_DOUBLE_EQ(NoisePreview::grey(square.column, square.row), square.level / 100.0 + 0.25)
            << square.column << ", " << square.row;
    }
}

TEST(NoisePreview, UsesItsWholeRangeOfGreys) {
    std::set<double> greys;
    for (std::uint64_t i = 0; i < 1600; ++i) {
        greys.insert(NoisePreview::grey(i % 40, i / 40));
    }
    EXPECT_GT(greys.size(), 45U); // of 55
    EXPECT_GE(*greys.begin(), 0.25);
    EXPECT_LE(*greys.rbegin(), 0.79);
}

TEST(NoisePreview, SquaresCoverTheBox) {
    EXPECT_EQ(NoisePreview::cells(0), 0);
    EXPECT_EQ(NoisePreview::cells(-3), 0);
    EXPECT_EQ(NoisePreview::cells(8), 2);
    EXPECT_EQ(NoisePreview::cells(8.1), 3);
}

} // namespace
} // namespace murkwell
