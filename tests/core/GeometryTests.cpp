#include "core/Geometry.h"

#include <gtest/gtest.h>
#include <type_traits>

namespace murkwell {
namespace {

TEST(Geometry, SpacesDoNotMix) {
    static_assert(!std::is_convertible_v<PageRect, CanvasRect>);
    static_assert(!std::is_convertible_v<RecognizerRect, PageRect>);
    static_assert(!std::is_assignable_v<PageRect&, PixelRect>);
    static_assert(!std::is_constructible_v<PageRect, RecognizerRect>);
}

TEST(Geometry, EdgesOfARectangleDrawnUpAndLeft) {
    const PageRect rect{0.5, 0.75, -0.25, -0.5};
    EXPECT_EQ(rect.minX(), 0.25);
    EXPECT_EQ(rect.maxX(), 0.5);
    EXPECT_EQ(rect.minY(), 0.25);
    EXPECT_EQ(rect.maxY(), 0.75);
}

} // namespace
} // namespace murkwell
