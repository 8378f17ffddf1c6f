#include "ui/widgets/Popover.h"

#include "ui/widgets/ControlPainting.h"
#include "ui/widgets/Text.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QTimer>
#include <QVBoxLayout>

namespace murkwell {
namespace {

constexpr double radius = 12;
constexpr int inset = 16; // of the content in the panel
constexpr int shadow = 20;
constexpr int pointerHeight = 8;
constexpr int pointerHalfWidth = 9;
constexpr int anchorGap = 4; // between the tip and the button
constexpr int panelWidth = 288;
constexpr int overhang = shadow - 4; // of the shadow over the window's edge

} // namespace

Popover::Popover(const QString& name, QWidget* anchorButton, QWidget* owner)
    : QWidget(owner), content(new QVBoxLayout(this)), anchor(anchorButton) {
    setAccessibleName(name);
    setVisible(false);
    content->setContentsMargins(shadow + inset, shadow + inset, shadow + inset,
                                shadow + inset + pointerHeight);
    content->setSpacing(12);
    setFocusPolicy(Qt::NoFocus);
}

void Popover::addWarning() {
    warning = new QLabel;
    warning->setWordWrap(true);
    warning->setTextFormat(Qt::PlainText);
    warning->setForegroundRole(QPalette::BrightText);
    warning->setVisible(false);
    content->addWidget(warning);
}

void Popover::setWarning(std::string_view sentence) {
    warning->setText(toQString(sentence));
    warning->setVisible(!sentence.empty());
}

void Popover::open() {
    place();
    show();
    raise();
    qApp->installEventFilter(this);
    if (firstFocus) {
        firstFocus->setFocus(Qt::PopupFocusReason);
    }
}

void Popover::dismiss() {
    if (!isVisible()) {
        return;
    }
    qApp->removeEventFilter(this);
    const bool hadFocus = isAncestorOf(QApplication::focusWidget());
    hide();
    if (hadFocus && anchor) {
        anchor->setFocus(Qt::PopupFocusReason);
    }
    emit closed();
}

// Wider only where a text, or in a low window the lowest control, would be cut otherwise.
int Popover::widthIn(const QSize& window) const {
    constexpr int step = 16;
    int width = std::max(panelWidth + 2 * shadow, content->minimumSize().width());
    while (heightForWidth(width) > window.height() + 2 * overhang &&
           width + step <= window.width() + 2 * overhang) {
        width += step;
    }
    return width;
}

void Popover::place() {
    if (!anchor) {
        return;
    }
    const QWidget* const owner = parentWidget();
    setFixedWidth(widthIn(owner->size()));
    const int wanted = heightForWidth(width());
    resize(width(), wanted > 0 ? wanted : sizeHint().height());
    const QRect button(anchor->mapTo(owner, QPoint()), anchor->size());
    const int left = std::clamp(button.left() - shadow, -overhang,
                                std::max(owner->width() - width() + overhang, -overhang));
    const int top = button.top() - height() + shadow - anchorGap;
    move(left, std::max(top, -overhang));
    const int furthest = shadow + static_cast<int>(radius) + pointerHalfWidth;
    pointerX = std::clamp(button.center().x() - left, furthest, width() - furthest);
    update();
}

QRectF Popover::panel() const {
    return QRectF(rect()).adjusted(shadow, shadow, -shadow, -shadow - pointerHeight);
}

void Popover::paintEvent(QPaintEvent*) {
    const Theme theme = Theme::of(*this);
    const QRectF area = panel();
    QPainterPath outline;
    outline.addRoundedRect(area.adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
    QPainterPath pointer;
    pointer.moveTo(pointerX - pointerHalfWidth, area.bottom() - 1);
    pointer.lineTo(pointerX, area.bottom() + pointerHeight - 0.5);
    pointer.lineTo(pointerX + pointerHalfWidth, area.bottom() - 1);
    pointer.closeSubpath();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    paintShadow(painter, area, radius, shadow - 2, 4, theme.dark ? 0.5 : 0.18);
    painter.setPen(QPen(theme.line, 1));
    painter.setBrush(theme.button);
    painter.drawPath(outline.united(pointer));
}

void Popover::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        dismiss();
    } else {
        QWidget::keyPressEvent(event);
    }
}

// Of the whole application: a press outside dismisses, and goes on to where it was aimed. The
// anchor toggles by itself.
bool Popover::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::MouseButtonPress) {
        const auto* const pressed = qobject_cast<QWidget*>(watched);
        const bool isOurs =
            pressed == nullptr || pressed == this || isAncestorOf(pressed) || pressed == anchor;
        if (!isOurs) {
            dismiss();
        }
    } else if (event->type() == QEvent::Resize && watched == parentWidget()) {
        QTimer::singleShot(0, this, &Popover::place); // once the button has its new place
    }
    return QWidget::eventFilter(watched, event);
}

bool Popover::event(QEvent* event) {
    // The panel takes presses between its controls, so that they do not reach what lies below.
    if (event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseButtonRelease) {
        event->accept();
        return true;
    }
    const bool handled = QWidget::event(event);
    if (event->type() == QEvent::LayoutRequest && isVisible()) {
        place();
    }
    return handled;
}

// Tab stays inside while the popover is open.
bool Popover::focusNextPrevChild(bool next) {
    QWidget* const start = QApplication::focusWidget();
    QWidget* candidate = start;
    do {
        candidate = next ? candidate->nextInFocusChain() : candidate->previousInFocusChain();
        const bool takesTab = isAncestorOf(candidate) && candidate->isVisible() &&
                              candidate->isEnabled() &&
                              (candidate->focusPolicy() & Qt::TabFocus) != 0;
        if (takesTab) {
            candidate->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
            return true;
        }
    } while (candidate != start);
    return false;
}

} // namespace murkwell
