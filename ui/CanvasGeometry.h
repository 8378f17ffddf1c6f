// Where a page lies in the view that shows it, and what gestures make of boxes. Pure arithmetic.
//
// Canvas space: device-independent pixels of the view, origin at its top-left corner, y down.
#pragma once

#include "core/Geometry.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace murkwell {

using CanvasPoint = Point<CanvasSpace>;
using CanvasSize = Size<CanvasSpace>;
using PagePoint = Point<PageSpace>;

// How far a pointer has gone since it was pressed, in canvas space; either part may be negative.
struct CanvasTranslation {
    double dx{};
    double dy{};

    bool operator==(const CanvasTranslation&) const = default;
};

// The handles of a selected box. Later ones lie above earlier ones.
enum class Corner : std::uint8_t { topLeft, topRight, bottomLeft, bottomRight };

inline constexpr std::array allCorners{Corner::topLeft, Corner::topRight, Corner::bottomLeft,
                                       Corner::bottomRight};

[[nodiscard]] std::string_view rawValue(Corner corner);

// None unless the text is exactly a raw value.
[[nodiscard]] std::optional<Corner> corner(std::string_view rawValue);

// Where a page of width x height pixels lies: centred, as large as fits with 24 points to spare on
// every side. A small page is enlarged. The zero rectangle when any side is not positive.
[[nodiscard]] CanvasRect fittedRect(double width, double height, CanvasSize in);

// The page point under a point of the view, which may lie beside the page: clamped to [0, 1]. The
// origin when the page has no extent.
[[nodiscard]] PagePoint norm(CanvasPoint point, const CanvasRect& fit);

// Where a box is seen.
[[nodiscard]] CanvasRect viewRect(const PageRect& rect, const CanvasRect& fit);

// The box whose opposite corners the two points are.
[[nodiscard]] PageRect spanned(PagePoint one, PagePoint other);

// The origin moved. It may leave the page: the model clamps.
[[nodiscard]] PageRect moved(const PageRect& origin, CanvasTranslation by, const CanvasRect& fit);

// The origin with one corner moved; the opposite one stays. A corner that is dragged past it flips
// the box, so that the sides of the result are never negative.
[[nodiscard]] PageRect resized(const PageRect& origin, Corner corner, CanvasTranslation by,
                               const CanvasRect& fit);

// The middle of a handle.
[[nodiscard]] CanvasPoint cornerPoint(const CanvasRect& rect, Corner corner);

} // namespace murkwell
