#include "ui/widgets/ElidedLabel.h"

#include <QEvent>
#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

namespace murkwell {

ElidedLabel::ElidedLabel(Qt::TextElideMode elideMode, QWidget* parent)
    : QLabel(parent), mode(elideMode) {
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
}

QString ElidedLabel::shown() const {
    return fontMetrics().elidedText(text(), mode, width());
}

void ElidedLabel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setPen(palette().color(foregroundRole()));
    painter.drawText(rect(), Qt::AlignVCenter | Qt::TextSingleLine, shown());
}

bool ElidedLabel::event(QEvent* event) {
    if (event->type() == QEvent::ToolTip && shown() != text()) {
        QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), text(), this);
        return true;
    }
    return QLabel::event(event);
}

} // namespace murkwell
