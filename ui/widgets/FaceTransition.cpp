#include "ui/widgets/FaceTransition.h"

#include <QPainter>

namespace murkwell {
namespace {

constexpr int duration = 180; // ms

} // namespace

void FaceTransition::start(QWidget* owner) {
    for (auto* const running : owner->findChildren<FaceTransition*>()) {
        delete running; // the newest change is the one to be seen
    }
    new FaceTransition(owner); // the owner's; deletes itself at the end
}

FaceTransition::FaceTransition(QWidget* owner) : QWidget(owner), before(owner->grab()) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setGeometry(owner->rect());
    fading.setDuration(duration);
    fading.setEasingCurve(QEasingCurve::InOutQuad);
    fading.setStartValue(1.0);
    fading.setEndValue(0.0);
    connect(&fading, &QVariantAnimation::valueChanged, this, [this] { update(); });
    connect(&fading, &QVariantAnimation::finished, this, &QObject::deleteLater);
    show();
    raise();
    fading.start();
}

void FaceTransition::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setOpacity(fading.currentValue().toDouble());
    painter.drawPixmap(0, 0, before);
}

} // namespace murkwell
