#include "ui/CanvasGeometry.h"

#include <algorithm>
#include <cmath>

namespace murkwell {
namespace {

// Left and right together, and above and below together.
constexpr double margins = 48;

constexpr std::array cornerNames{std::string_view("topLeft"), std::string_view("topRight"),
                                 std::string_view("bottomLeft"), std::string_view("bottomRight")};

bool isLeft(Corner corner) {
    return corner == Corner::topLeft || corner == Corner::bottomLeft;
}

bool isTop(Corner corner) {
    return corner == Corner::topLeft || corner == Corner::topRight;
}

// A distance in the view as a fraction of the page, which has no extent when nothing is shown.
double fraction(double distance, double extent) {
    return extent > 0 ? distance / extent : 0;
}

double clampedToPage(double value) {
    return std::min(std::max(value, 0.0), 1.0);
}

} // namespace

std::string_view rawValue(Corner corner) {
    return cornerNames[static_cast<std::size_t>(corner)];
}

std::optional<Corner> corner(std::string_view rawValue) {
    const auto* const found = std::find(cornerNames.begin(), cornerNames.end(), rawValue);
    if (found == cornerNames.end()) {
        return std::nullopt;
    }
    return allCorners[static_cast<std::size_t>(found - cornerNames.begin())];
}

CanvasRect fittedRect(double width, double height, CanvasSize in) {
    if (!(width > 0 && height > 0 && in.width > 0 && in.height > 0)) {
        return {};
    }
    const double scale = std::min(std::max(in.width - margins, 1.0) / width,
                                  std::max(in.height - margins, 1.0) / height);
    const CanvasSize fitted{width * scale, height * scale};
    return {(in.width - fitted.width) / 2, (in.height - fitted.height) / 2, fitted.width,
            fitted.height};
}

PagePoint norm(CanvasPoint point, const CanvasRect& fit) {
    if (!(fit.width > 0 && fit.height > 0)) {
        return {};
    }
    return {clampedToPage((point.x - fit.minX()) / fit.width),
            clampedToPage((point.y - fit.minY()) / fit.height)};
}

CanvasRect viewRect(const PageRect& rect, const CanvasRect& fit) {
    return {fit.x + rect.x * fit.width, fit.y + rect.y * fit.height, rect.width * fit.width,
            rect.height * fit.height};
}

PageRect spanned(PagePoint one, PagePoint other) {
    return {std::min(one.x, other.x), std::min(one.y, other.y), std::abs(other.x - one.x),
            std::abs(other.y - one.y)};
}

PageRect moved(const PageRect& origin, CanvasTranslation by, const CanvasRect& fit) {
    return {origin.x + fraction(by.dx, fit.width), origin.y + fraction(by.dy, fit.height),
            origin.width, origin.height};
}

PageRect resized(const PageRect& origin, Corner corner, CanvasTranslation by,
                 const CanvasRect& fit) {
    PagePoint dragged{isLeft(corner) ? origin.minX() : origin.maxX(),
                      isTop(corner) ? origin.minY() : origin.maxY()};
    const PagePoint fixed{isLeft(corner) ? origin.maxX() : origin.minX(),
                          isTop(corner) ? origin.maxY() : origin.minY()};
    dragged.x += fraction(by.dx, fit.width);
    dragged.y += fraction(by.dy, fit.height);
    return spanned(dragged, fixed);
}

CanvasPoint cornerPoint(const CanvasRect& rect, Corner corner) {
    return {isLeft(corner) ? rect.minX() : rect.maxX(), isTop(corner) ? rect.minY() : rect.maxY()};
}

} // namespace murkwell
