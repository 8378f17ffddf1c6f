#include "ui/widgets/HatchBackground.h"

#include "ui/HatchLines.h"
#include "ui/widgets/Theme.h"

#include <QPainter>

namespace murkwell::HatchBackground {

void paint(QPainter& painter, const QSizeF& frame, const Theme& theme) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setClipRect(QRectF(QPointF(), frame), Qt::IntersectClip);
    painter.fillRect(QRectF(QPointF(), frame), theme.canvas);
    painter.setPen(
        QPen(withOpacity(QColor(128, 128, 128), HatchLines::opacity), HatchLines::width));
    for (const double x : HatchLines::starts(frame.width(), frame.height())) {
        painter.drawLine(QPointF(x, 0), QPointF(x + frame.height(), frame.height()));
    }
    painter.restore();
}

} // namespace murkwell::HatchBackground
