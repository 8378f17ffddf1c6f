// What the controls have in common when they paint themselves. Device-independent pixels.
#pragma once

#include "ui/widgets/Theme.h"

#include <QPainter>
#include <QRectF>

class QWidget;

namespace murkwell {

inline constexpr double controlRadius = 7;
inline constexpr int controlHeight = 30;
inline constexpr int iconGap = 8; // between a control's icon and its text

// A ring inside the rectangle, for the control that has the keyboard.
void paintFocusRing(QPainter& painter, const QRectF& rect, double radius, const Theme& theme);

// Whether the ring is to be shown: the focus came by a key, or the last input was one.
[[nodiscard]] bool showsFocusRing(const QWidget& widget);

void fillRounded(QPainter& painter, const QRectF& rect, double radius, const QColor& fill);

// A line of width 1 inside the rectangle's edge.
void outlineRounded(QPainter& painter, const QRectF& rect, double radius, const QColor& line);

// A soft shadow around the rectangle, which itself is left alone.
void paintShadow(QPainter& painter, const QRectF& rect, double radius, double blur, double dropped,
                 double opacity);

} // namespace murkwell
