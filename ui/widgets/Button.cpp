#include "ui/widgets/Button.h"

#include "ui/widgets/ControlPainting.h"
#include "ui/widgets/Icons.h"
#include "ui/widgets/Text.h"

#include <QEvent>
#include <QPainter>
#include <QShortcutEvent>
#include <QTimer>

namespace murkwell {
namespace {

constexpr int padding = 12;
constexpr int tightPadding = 8;
constexpr int plainPadding = 6;
constexpr int iconButtonSide = 26;
constexpr int largeHeight = 36;
constexpr int largePadding = 18;
constexpr int wheelSpokes = 8;
constexpr int wheelTurn = 100; // ms a spoke

} // namespace

Button::Button(Look buttonLook, const QString& icon, const QString& label, QWidget* parent)
    : QPushButton(escaped(label), parent), look(buttonLook), iconName(icon), label_(label),
      turning(new QTimer(this)) {
    setAccessibleName(label);
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    turning->setInterval(wheelTurn);
    connect(turning, &QTimer::timeout, this, [this] {
        wheelStep = (wheelStep + 1) % wheelSpokes;
        update();
    });
}

void Button::setCompact(bool compact) {
    if (isCompact != compact) {
        isCompact = compact;
        updateGeometry();
        update();
    }
}

void Button::setTight(bool tight) {
    if (isTight != tight) {
        isTight = tight;
        updateGeometry();
    }
}

void Button::setSecondary(bool secondary) {
    isSecondary = secondary;
    update();
}

void Button::setLarge(bool large) {
    isLarge = large;
    updateGeometry();
}

void Button::setBusy(const QString& busyText) {
    if (busyText_ == busyText) {
        return;
    }
    busyText_ = busyText;
    setAccessibleDescription(busyText);
    busyText.isEmpty() ? turning->stop() : turning->start();
    updateGeometry();
    update();
}

bool Button::showsText(bool compact) const {
    return !label_.isEmpty() && !(compact && !iconName.isEmpty());
}

QFont Button::labelFont() const {
    return look == Look::prominent ? headline(font()) : font();
}

int Button::width(bool compact, bool tight) const {
    const bool hasText = showsText(compact);
    const int side = isLarge               ? largePadding
                     : look == Look::plain ? plainPadding
                     : tight               ? tightPadding
                                           : padding;
    // While busy it does not shrink, so that its neighbours stay where they are.
    const QFontMetrics metrics(labelFont());
    const int widest =
        std::max(metrics.horizontalAdvance(label_), metrics.horizontalAdvance(shownText()));
    const int textWidth = hasText ? widest : 0;
    const int iconWidth = iconName.isEmpty() ? 0 : iconSide + (hasText ? iconGap : 0);
    return std::max(2 * side + textWidth + iconWidth, look == Look::plain ? iconButtonSide : 0);
}

QSize Button::sizeHint() const {
    const int wanted = isLarge                                        ? largeHeight
                       : look == Look::plain && !showsText(isCompact) ? iconButtonSide
                                                                      : controlHeight;
    const int textHeight = QFontMetrics(labelFont()).height();
    return {width(isCompact, isTight), std::max(wanted, textHeight + 8)};
}

void Button::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    paintBackground(painter);
    paintContent(painter);
    if (showsFocusRing(*this)) {
        paintFocusRing(painter, rect(), controlRadius, Theme::of(*this));
    }
}

void Button::paintBackground(QPainter& painter) const {
    const Theme theme = Theme::of(*this);
    const QRectF area(rect());
    const bool lit = isEnabled() && (underMouse() || isDown());
    const QColor veil = withOpacity(theme.text, isDown() ? 0.12 : 0.06);
    if (look == Look::prominent) {
        fillRounded(painter, area, controlRadius,
                    withOpacity(theme.accent, isEnabled() ? 1.0 : 0.4));
    } else if (look == Look::standard) {
        fillRounded(painter, area, controlRadius, theme.button);
        outlineRounded(painter, area, controlRadius, theme.line);
    }
    if (lit) {
        fillRounded(painter, area, controlRadius, veil);
    }
}

void Button::paintContent(QPainter& painter) const {
    const Theme theme = Theme::of(*this);
    QColor colour =
        palette().color(isEnabled() ? QPalette::Active : QPalette::Disabled, QPalette::ButtonText);
    if (look == Look::prominent) {
        colour = isEnabled() ? readableOn(theme.accent)
                             : withOpacity(theme.dark ? theme.text : QColor(Qt::white), 0.7);
    } else if (isSecondary && isEnabled()) {
        colour = theme.dimmed;
    }
    const bool hasText = showsText(isCompact);
    const bool hasIcon = !iconName.isEmpty();
    painter.setFont(labelFont());
    const int textWidth = hasText ? painter.fontMetrics().horizontalAdvance(shownText()) : 0;
    const int content = textWidth + (hasIcon ? iconSide + (hasText ? iconGap : 0) : 0);
    double x = std::floor((rect().width() - content) / 2.0);
    if (hasIcon) {
        const QRectF square(x, std::floor((height() - iconSide) / 2.0), iconSide, iconSide);
        if (busyText_.isEmpty()) {
            paintIcon(painter, iconName, square, colour);
        } else {
            paintWheel(painter, square, colour);
        }
        x += iconSide + iconGap;
    }
    if (hasText) {
        painter.setPen(colour);
        painter.drawText(QRectF(x, 0, textWidth + 1, height()), Qt::AlignVCenter, shownText());
    }
}

void Button::paintWheel(QPainter& painter, const QRectF& square, const QColor& colour) const {
    painter.save();
    painter.translate(square.center());
    for (int spoke = 0; spoke < wheelSpokes; ++spoke) {
        const int age = (spoke - wheelStep + wheelSpokes) % wheelSpokes;
        QPen pen(withOpacity(colour, 0.2 + 0.8 * age / (wheelSpokes - 1)), 1.5);
        pen.setCapStyle(Qt::RoundCap);
        painter.setPen(pen);
        painter.drawLine(QPointF(0, -3.5), QPointF(0, -6.5));
        painter.rotate(360.0 / wheelSpokes);
    }
    painter.restore();
}

void Button::enterEvent(QEnterEvent* event) {
    QPushButton::enterEvent(event);
    update();
}

// Its key acts at once: Qt would show the button pressed for a tenth of a second first.
bool Button::event(QEvent* event) {
    if (event->type() == QEvent::Shortcut &&
        !static_cast<const QShortcutEvent*>(event)->isAmbiguous()) {
        click();
        return true;
    }
    return QPushButton::event(event);
}

void Button::leaveEvent(QEvent* event) {
    QPushButton::leaveEvent(event);
    update();
}

} // namespace murkwell
