#include "ui/widgets/DropZone.h"

#include "ui/WindowTexts.h"
#include "ui/widgets/Button.h"
#include "ui/widgets/ControlPainting.h"
#include "ui/widgets/HatchBackground.h"
#include "ui/widgets/Icons.h"
#include "ui/widgets/Text.h"

#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QVBoxLayout>

namespace murkwell {
namespace {

constexpr int symbolSide = 52;
constexpr int zoneInset = 28;
constexpr int columnInset = 44;
constexpr int widestText = 420;
constexpr double zoneRadius = 16;
constexpr double growth = 0.01; // of the zone while files are over it

QColor between(const QColor& one, const QColor& other, double share) {
    const auto mix = [share](float a, float b) { return a + (b - a) * static_cast<float>(share); };
    return QColor::fromRgbF(mix(one.redF(), other.redF()), mix(one.greenF(), other.greenF()),
                            mix(one.blueF(), other.blueF()), mix(one.alphaF(), other.alphaF()));
}

// The symbol leaves its painting to the zone, which tints and scales it.
class Space final : public QWidget {
public:
    explicit Space(QWidget* parent) : QWidget(parent) {
        setFixedSize(symbolSide, symbolSide);
        setAttribute(Qt::WA_TransparentForMouseEvents);
    }
};

} // namespace

DropZone::DropZone(QWidget* parent)
    : QWidget(parent), symbol(new Space(this)), heading(new QLabel(text(WindowTexts::dropTitle))),
      explanation(new QLabel(text(WindowTexts::dropText))) {
    heading->setFont(title(font()));
    heading->setWordWrap(true);
    heading->setAlignment(Qt::AlignCenter);
    explanation->setWordWrap(true);
    explanation->setAlignment(Qt::AlignCenter);
    explanation->setForegroundRole(QPalette::PlaceholderText);
    explanation->setFixedSize(widestText, explanation->heightForWidth(widestText));
    auto* const choose = new Button(Button::Look::standard, {}, text(WindowTexts::chooseFile));
    choose->setLarge(true);
    choose->setToolTip(text(WindowTexts::openTip));
    connect(choose, &QPushButton::clicked, this, &DropZone::chooseFile);
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(columnInset, 0, columnInset, 0);
    column->setSpacing(14);
    column->addStretch(1);
    column->addWidget(symbol, 0, Qt::AlignHCenter);
    column->addWidget(heading);
    column->addWidget(explanation, 0, Qt::AlignHCenter);
    column->addSpacing(6);
    column->addWidget(choose, 0, Qt::AlignHCenter);
    column->addStretch(1);
}

void DropZone::setTargeted(double share) {
    if (targeted != share) {
        targeted = share;
        update();
    }
}

void DropZone::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    HatchBackground::paint(painter, QSizeF(size()), Theme::of(*this));
    paintZone(painter);
}

void DropZone::paintZone(QPainter& painter) const {
    const Theme theme = Theme::of(*this);
    const QRectF zone = QRectF(rect()).adjusted(zoneInset, zoneInset, -zoneInset, -zoneInset);
    const double scale = 1 + growth * targeted;
    painter.translate(zone.center());
    painter.scale(scale, scale);
    painter.translate(-zone.center());
    QPen dashes(between(withOpacity(theme.dimmed, 0.35), theme.accent, targeted), 2);
    dashes.setDashPattern({4.5, 3.5}); // in widths: 9 on, 7 off
    dashes.setCapStyle(Qt::FlatCap);
    painter.setPen(dashes);
    painter.setBrush(withOpacity(theme.accent, 0.06 * targeted));
    painter.drawRoundedRect(zone.adjusted(1, 1, -1, -1), zoneRadius - 1, zoneRadius - 1);
    paintIcon(painter, QStringLiteral("lock.rectangle.on.rectangle"), QRectF(symbol->geometry()),
              between(theme.dimmed, theme.accent, targeted));
}

void DropZone::mousePressEvent(QMouseEvent* event) {
    isPressed = event->button() == Qt::LeftButton;
}

void DropZone::mouseReleaseEvent(QMouseEvent* event) {
    const bool isClick = isPressed && rect().contains(event->pos());
    isPressed = false;
    if (isClick) {
        emit chooseFile();
    }
}

} // namespace murkwell
