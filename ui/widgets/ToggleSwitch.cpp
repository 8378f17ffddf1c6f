#include "ui/widgets/ToggleSwitch.h"

#include "ui/widgets/ControlPainting.h"
#include "ui/widgets/Icons.h"
#include "ui/widgets/Text.h"

#include <QPainter>

namespace murkwell {
namespace {

constexpr QSize switchSize(34, 20);
constexpr int knobInset = 2;
constexpr int smallestHeight = 24;
constexpr int gap = 12; // between texts and switch
constexpr int captionGap = 2;

} // namespace

ToggleSwitch::ToggleSwitch(const QString& icon, const QString& labelText, const QString& below,
                           QWidget* parent)
    : QCheckBox(escaped(labelText), parent), iconName(icon), label(labelText), captionText(below) {
    setAccessibleName(labelText);
    setAccessibleDescription(below);
    QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Minimum);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

int ToggleSwitch::textLeft() const {
    return iconName.isEmpty() ? 0 : iconSide + iconGap + 1;
}

int ToggleSwitch::captionHeight(int width) const {
    if (captionText.isEmpty()) {
        return 0;
    }
    const QRect space(0, 0, width - textLeft() - switchSize.width() - gap, 1000);
    return captionGap + QFontMetrics(caption(font()))
                            .boundingRect(space, Qt::TextWordWrap, captionText)
                            .height();
}

int ToggleSwitch::heightForWidth(int width) const {
    return std::max(smallestHeight, fontMetrics().height() + captionHeight(width));
}

QSize ToggleSwitch::sizeHint() const {
    const int wanted =
        textLeft() + fontMetrics().horizontalAdvance(label) + gap + switchSize.width();
    return {wanted, heightForWidth(width())};
}

bool ToggleSwitch::hitButton(const QPoint& position) const {
    return rect().contains(position);
}

void ToggleSwitch::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    paintTexts(painter);
    paintSwitch(painter);
}

void ToggleSwitch::paintTexts(QPainter& painter) const {
    const Theme theme = Theme::of(*this);
    const int labelHeight = captionText.isEmpty() ? height() : fontMetrics().height();
    if (!iconName.isEmpty()) {
        paintIcon(painter, iconName, QRectF(0, (labelHeight - iconSide) / 2, iconSide, iconSide),
                  theme.text);
    }
    const int space = width() - textLeft() - switchSize.width() - gap;
    painter.setPen(theme.text);
    painter.setFont(font());
    painter.drawText(QRect(textLeft(), 0, space, labelHeight), Qt::AlignVCenter, label);
    if (!captionText.isEmpty()) {
        painter.setPen(theme.dimmed);
        painter.setFont(caption(font()));
        painter.drawText(QRect(textLeft(), labelHeight + captionGap, space, height() - labelHeight),
                         Qt::TextWordWrap, captionText);
    }
}

void ToggleSwitch::paintSwitch(QPainter& painter) const {
    const Theme theme = Theme::of(*this);
    const QRectF track(width() - switchSize.width(), (height() - switchSize.height()) / 2,
                       switchSize.width(), switchSize.height());
    const double radius = track.height() / 2;
    const QColor off = theme.dark ? QColor("#6b6b74") : QColor("#8c8d96");
    fillRounded(painter, track, radius, isChecked() ? theme.accent : off);
    const double side = track.height() - 2 * knobInset;
    const double x = isChecked() ? track.right() - knobInset - side : track.left() + knobInset;
    fillRounded(painter, {x, track.top() + knobInset, side, side}, side / 2, Qt::white);
    if (showsFocusRing(*this)) {
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(theme.accentText, 2));
        painter.drawRoundedRect(track.adjusted(-2, -2, 1, 2), radius + 2, radius + 2);
    }
}

} // namespace murkwell
