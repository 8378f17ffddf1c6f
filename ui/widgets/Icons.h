// The program's icons: monochrome drawings in resources/icons, tinted when they are painted.
#pragma once

#include <QColor>
#include <QIcon>
#include <QPainter>
#include <QRectF>
#include <QString>

namespace murkwell {

// Side of an icon in a control, in device-independent pixels.
inline constexpr int iconSide = 16;

// Fills the square. An unknown name paints nothing.
void paintIcon(QPainter& painter, const QString& name, const QRectF& square, const QColor& colour);

// For menus, which paint by themselves.
[[nodiscard]] QIcon icon(const QString& name, const QColor& colour);

} // namespace murkwell
