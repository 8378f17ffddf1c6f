#include "ui/widgets/IconView.h"

#include "ui/widgets/Icons.h"
#include "ui/widgets/Theme.h"

#include <QPainter>

namespace murkwell {

IconView::IconView(const QString& name, QWidget* parent) : QWidget(parent), iconName(name) {
    setFixedSize(iconSide, iconSide);
}

void IconView::setIcon(const QString& name) {
    if (iconName != name) {
        iconName = name;
        update();
    }
}

void IconView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    paintIcon(painter, iconName, rect(), Theme::of(*this).dimmed);
}

} // namespace murkwell
