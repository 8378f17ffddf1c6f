#include "ui/widgets/TextField.h"

#include "ui/widgets/ControlPainting.h"

#include <QPainter>

namespace murkwell {
namespace {

constexpr int padding = 8;

} // namespace

TextField::TextField(const QString& placeholder, QWidget* parent) : QLineEdit(parent) {
    setPlaceholderText(placeholder);
    setAccessibleName(placeholder);
    setFrame(false);
    QPalette bare;
    bare.setColor(QPalette::Base, Qt::transparent); // paintEvent() fills it
    setPalette(bare);
    setTextMargins(padding, 0, padding, 0);
}

QSize TextField::sizeHint() const {
    return {QLineEdit::sizeHint().width(), std::max(controlHeight, fontMetrics().height() + 10)};
}

void TextField::paintEvent(QPaintEvent* event) {
    const Theme theme = Theme::of(*this);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    fillRounded(painter, rect(), controlRadius, theme.field);
    if (hasFocus()) {
        paintFocusRing(painter, rect(), controlRadius, theme);
    } else {
        outlineRounded(painter, rect(), controlRadius, theme.faintest);
    }
    painter.end();
    QLineEdit::paintEvent(event);
}

} // namespace murkwell
