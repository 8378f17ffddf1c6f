#include "ui/widgets/ControlPainting.h"

#include <QPainterPath>
#include <QWidget>

#include <cmath>

namespace murkwell {

void paintFocusRing(QPainter& painter, const QRectF& rect, double radius, const Theme& theme) {
    constexpr double width = 2;
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(theme.accentText, width));
    const double inset = width / 2;
    painter.drawRoundedRect(rect.adjusted(inset, inset, -inset, -inset), radius - inset,
                            radius - inset);
}

bool showsFocusRing(const QWidget& widget) {
    return widget.hasFocus() && widget.window()->testAttribute(Qt::WA_KeyboardFocusChange);
}

void fillRounded(QPainter& painter, const QRectF& rect, double radius, const QColor& fill) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill);
    painter.drawRoundedRect(rect, radius, radius);
}

void outlineRounded(QPainter& painter, const QRectF& rect, double radius, const QColor& line) {
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(line, 1));
    painter.drawRoundedRect(rect.adjusted(0.5, 0.5, -0.5, -0.5), radius - 0.5, radius - 0.5);
}

void paintShadow(QPainter& painter, const QRectF& rect, double radius, double blur, double dropped,
                 double opacity) {
    painter.save();
    QPainterPath everywhere;
    everywhere.addRect(rect.adjusted(-2 * blur, -2 * blur, 2 * blur, 2 * blur + dropped));
    QPainterPath inside;
    inside.addRoundedRect(rect, radius, radius);
    painter.setClipPath(everywhere - inside);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::black);
    // Rings from the outside in. Each one adds what the blurred edge gains there: the integral of
    // a Gaussian whose deviation is half the blur.
    const double deviation = blur / 2;
    const auto coverage = [deviation](double outside) {
        return 0.5 * std::erfc(outside / (deviation * std::sqrt(2.0)));
    };
    double reached = 0;
    for (double outside = blur; outside >= 0; outside -= 1) {
        const double wanted = opacity * coverage(outside);
        painter.setOpacity((wanted - reached) / (1 - reached));
        reached = wanted;
        const QRectF ring =
            rect.translated(0, dropped).adjusted(-outside, -outside, outside, outside);
        painter.drawRoundedRect(ring, radius + outside, radius + outside);
    }
    painter.restore();
}

} // namespace murkwell
