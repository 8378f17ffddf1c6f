#include "ui/widgets/LinkButton.h"

#include "ui/widgets/ControlPainting.h"
#include "ui/widgets/Text.h"

#include <QPainter>

namespace murkwell {
namespace {

constexpr int padding = 4;
constexpr int smallestTarget = 24;

} // namespace

LinkButton::LinkButton(const QString& text, QWidget* parent)
    : QPushButton(escaped(text), parent), label(text) {
    setAccessibleName(text);
    setCursor(Qt::PointingHandCursor);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize LinkButton::sizeHint() const {
    return {std::max(fontMetrics().horizontalAdvance(label) + 2 * padding, smallestTarget),
            smallestTarget};
}

void LinkButton::paintEvent(QPaintEvent*) {
    const Theme theme = Theme::of(*this);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QFont shown = font();
    shown.setUnderline(underMouse());
    painter.setFont(shown);
    painter.setPen(isDown() ? theme.text : theme.accentText);
    painter.drawText(rect(), Qt::AlignCenter, label);
    if (showsFocusRing(*this)) {
        paintFocusRing(painter, rect(), 4, theme);
    }
}

} // namespace murkwell
