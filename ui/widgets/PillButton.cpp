#include "ui/widgets/PillButton.h"

#include "ui/widgets/ControlPainting.h"
#include "ui/widgets/Text.h"

#include <QPainter>

namespace murkwell {
namespace {

constexpr int margin = 10; // above and below the label

} // namespace

PillButton::PillButton(const QString& text, QWidget* parent)
    : QPushButton(escaped(text), parent), label(text) {
    setAccessibleName(text);
    setFont(headline(font()));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

QSize PillButton::sizeHint() const {
    return {fontMetrics().horizontalAdvance(label) + 4 * margin,
            fontMetrics().height() + 2 * margin};
}

double PillButton::opacity(bool enabled, bool pressed) {
    if (!enabled) {
        return 0.4;
    }
    return pressed ? 0.8 : 1.0;
}

void PillButton::paintEvent(QPaintEvent*) {
    const Theme theme = Theme::of(*this);
    const QRectF area(rect());
    const double radius = area.height() / 2;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    fillRounded(painter, area, radius,
                withOpacity(theme.accentFill, opacity(isEnabled(), isDown())));
    if (showsFocusRing(*this)) {
        painter.setPen(QPen(Qt::white, 1.5));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(area.adjusted(3, 3, -3, -3), radius - 3, radius - 3);
    }
    painter.setFont(font());
    painter.setPen(Qt::white);
    painter.drawText(area, Qt::AlignCenter, label);
}

} // namespace murkwell
