// Paints the shapes of the canvas.
#pragma once

#include "ui/CanvasShapes.h"

#include <QRectF>

class QPainter;

namespace murkwell {

struct Theme;

namespace CanvasPainting {

[[nodiscard]] QRectF toQRectF(const CanvasRect& rect);

// The page itself is left out: it lies in the canvas's backdrop.
void paint(QPainter& painter, const CanvasShape& shape, const Theme& theme);

} // namespace CanvasPainting
} // namespace murkwell
