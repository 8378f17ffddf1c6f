// What the canvas looks like, as shapes that a toolkit paints in their order, later ones on top.
#pragma once

#include "core/Geometry.h"

#include <cstdint>
#include <optional>

namespace murkwell {

enum class CanvasInk : std::uint8_t { black, white, midGrey, accent };

struct CanvasFill {
    CanvasInk ink;
    double opacity;

    bool operator==(const CanvasFill&) const = default;
};

// Dashes and gaps in points; both zero for a solid line.
struct CanvasDash {
    double on{};
    double off{};

    bool operator==(const CanvasDash&) const = default;
};

// Drawn inside the shape's edge, whatever its width.
struct CanvasOutline {
    CanvasInk ink;
    double opacity;
    double width;
    CanvasDash dash{};

    bool operator==(const CanvasOutline&) const = default;
};

struct CanvasShape {
    enum class Form : std::uint8_t {
        page, // the page image with its shadow
        rectangle,
        roundedRectangle, // corners of draftCornerRadius
        ellipse,
        noise, // NoisePreview; neither fill nor outline
    };

    static constexpr double draftCornerRadius = 2;

    Form form;
    CanvasRect rect; // the outer edge
    std::optional<CanvasFill> fill{};
    std::optional<CanvasOutline> outline{};

    bool operator==(const CanvasShape&) const = default;
};

} // namespace murkwell
