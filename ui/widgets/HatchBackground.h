// The hatched backdrop of the canvas and the drop zone.
#pragma once

#include <QSizeF>

class QPainter;

namespace murkwell {

struct Theme;

namespace HatchBackground {

// Fills the frame whose top-left corner is the painter's origin.
void paint(QPainter& painter, const QSizeF& frame, const Theme& theme);

} // namespace HatchBackground
} // namespace murkwell
