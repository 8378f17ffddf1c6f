#include "ui/widgets/WindowStyle.h"

#include "ui/widgets/ControlPainting.h"

#include <QPainter>
#include <QStyleOptionMenuItem>

namespace murkwell {

WindowStyle::WindowStyle() : QProxyStyle(QStringLiteral("Fusion")) {}

// The menu bar is one area with the header below it, without a line between them.
void WindowStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                              const QWidget* widget) const {
    const auto* const item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
    if (element == CE_MenuBarEmptyArea) {
        painter->fillRect(option->rect, option->palette.window());
    } else if (element == CE_MenuBarItem && item != nullptr) {
        painter->fillRect(option->rect, option->palette.window());
        if ((option->state & State_Selected) != 0) {
            painter->save();
            painter->setRenderHint(QPainter::Antialiasing);
            fillRounded(*painter, QRectF(option->rect).adjusted(0, 1, 0, -1), controlRadius,
                        withOpacity(option->palette.color(QPalette::WindowText), 0.1));
            painter->restore();
        }
        drawItemText(painter, option->rect, Qt::AlignCenter | Qt::TextHideMnemonic, item->palette,
                     (option->state & State_Enabled) != 0, item->text, QPalette::WindowText);
    } else {
        QProxyStyle::drawControl(element, option, painter, widget);
    }
}

int WindowStyle::pixelMetric(PixelMetric metric, const QStyleOption* option,
                             const QWidget* widget) const {
    switch (metric) {
    case PM_MenuBarVMargin:
        return 3;
    case PM_MenuBarHMargin:
        return 4;
    case PM_MenuBarPanelWidth:
        return 0;
    default:
        return QProxyStyle::pixelMetric(metric, option, widget);
    }
}

int WindowStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                           QStyleHintReturn* returned) const {
    if (hint == SH_UnderlineShortcut) {
        return 0; // the keys work all the same
    }
    return QProxyStyle::styleHint(hint, option, widget, returned);
}

} // namespace murkwell
