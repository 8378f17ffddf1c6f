// The coordinate spaces of the program, and rectangles that remember theirs.
//
// Page space        fractions of a page bitmap, origin top-left, y down; the page is (0, 0, 1, 1)
// Recognizer space  fractions of an image, origin bottom-left, y up (what recognisers answer)
// Canvas space      device-independent pixels of the page view, origin top-left, y down
// Pixel space       whole pixels of a bitmap, origin top-left, y down
//
// An example, on a bitmap of 200 x 100 pixels: the page rectangle (0.1, 0.2, 0.5, 0.3) is the pixel
// rectangle (20, 20, 100, 30), and (0.1, 0.5, 0.5, 0.3) in recognizer space (0.5 = 1 - 0.2 - 0.3).
//
// A rectangle of one space does not convert to another: only named functions do that.
#pragma once

#include <algorithm>
#include <cstdint>

namespace murkwell {

struct PageSpace {
    using Scalar = double;
};
struct RecognizerSpace {
    using Scalar = double;
};
struct CanvasSpace {
    using Scalar = double;
};
struct PixelSpace {
    using Scalar = std::int32_t;
};

template <typename Space>
struct Point {
    typename Space::Scalar x{};
    typename Space::Scalar y{};

    bool operator==(const Point&) const = default;
};

template <typename Space>
struct Size {
    typename Space::Scalar width{};
    typename Space::Scalar height{};

    bool operator==(const Size&) const = default;
};

// Width and height may be negative while a gesture goes on: min and max are the smaller and the
// larger edge either way.
template <typename Space>
struct Rect {
    using Scalar = typename Space::Scalar;

    Scalar x{};
    Scalar y{};
    Scalar width{};
    Scalar height{};

    [[nodiscard]] constexpr Scalar minX() const { return std::min(x, x + width); }
    [[nodiscard]] constexpr Scalar maxX() const { return std::max(x, x + width); }
    [[nodiscard]] constexpr Scalar minY() const { return std::min(y, y + height); }
    [[nodiscard]] constexpr Scalar maxY() const { return std::max(y, y + height); }

    bool operator==(const Rect&) const = default;
};

using PageRect = Rect<PageSpace>;
using RecognizerRect = Rect<RecognizerSpace>;
using CanvasRect = Rect<CanvasSpace>;
using PixelRect = Rect<PixelSpace>;
using PixelSize = Size<PixelSpace>;

} // namespace murkwell
