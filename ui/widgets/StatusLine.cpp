#include "ui/widgets/StatusLine.h"

#include "ui/WindowTexts.h"
#include "ui/widgets/ControlPainting.h"
#include "ui/widgets/Icons.h"
#include "ui/widgets/Text.h"

#include <QAccessible>
#include <QPainter>

namespace murkwell {
namespace {

constexpr int smallestHeight = 20;

QString iconName(StatusText::Kind kind) {
    switch (kind) {
    case StatusText::Kind::none:
        return {};
    case StatusText::Kind::hint:
        return QStringLiteral("hand.draw");
    case StatusText::Kind::success:
        return QStringLiteral("checkmark.circle.fill");
    case StatusText::Kind::warning:
        return QStringLiteral("exclamationmark.triangle.fill");
    }
    return {};
}

QColor colour(StatusText::Kind kind, const Theme& theme) {
    switch (kind) {
    case StatusText::Kind::success:
        return theme.success;
    case StatusText::Kind::warning:
        return theme.warning;
    case StatusText::Kind::none:
    case StatusText::Kind::hint:
        return theme.dimmed;
    }
    return theme.dimmed;
}

} // namespace

StatusLine::StatusLine(QWidget* parent) : QWidget(parent) {
    QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Minimum);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

void StatusLine::setStatus(const StatusText& text) {
    setVisible(text.kind != StatusText::Kind::none);
    if (status == text) {
        return;
    }
    status = text;
    setAccessibleName(toQString(text.text));
    if (isVisible() && text.kind != StatusText::Kind::hint) {
        QAccessibleEvent said(this, QAccessible::Alert);
        QAccessible::updateAccessibility(&said);
    }
    updateGeometry();
    update();
}

int StatusLine::textHeight(const QString& text, int width) const {
    const QRect space(0, 0, std::max(width - iconSide - iconGap, 1), 10000);
    return fontMetrics().boundingRect(space, Qt::TextWordWrap, text).height();
}

int StatusLine::heightForWidth(int width) const {
    return std::max(
        {smallestHeight, textHeight(toQString(status.text), width),
         status.kind == StatusText::Kind::none ? 0 : textHeight(text(WindowTexts::hint), width)});
}

QSize StatusLine::sizeHint() const {
    return {fontMetrics().horizontalAdvance(toQString(status.text)) + iconSide + iconGap,
            heightForWidth(width())};
}

QSize StatusLine::minimumSizeHint() const {
    return {0, smallestHeight};
}

void StatusLine::paintEvent(QPaintEvent*) {
    const Theme theme = Theme::of(*this);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor ink = colour(status.kind, theme);
    const QRect space(iconSide + iconGap, 0, width() - iconSide - iconGap, height());
    const int lineHeight = fontMetrics().height();
    const int textTop = (height() - textHeight(toQString(status.text), width())) / 2;
    paintIcon(painter, iconName(status.kind),
              QRectF(0, textTop + (lineHeight - iconSide) / 2, iconSide, iconSide), ink);
    painter.setPen(ink);
    painter.drawText(space, Qt::AlignVCenter | Qt::TextWordWrap, toQString(status.text));
}

} // namespace murkwell
