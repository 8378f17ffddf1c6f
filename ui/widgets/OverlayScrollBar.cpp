#include "ui/widgets/OverlayScrollBar.h"

#include "ui/widgets/ControlPainting.h"

#include <QAbstractScrollArea>
#include <QEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionSlider>

namespace murkwell {
namespace {

constexpr int thickness = 8;
constexpr int inset = 2;

} // namespace

OverlayScrollBar::OverlayScrollBar(QAbstractScrollArea* area) : QScrollBar(Qt::Vertical, area) {
    area->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    QScrollBar* const hidden = area->verticalScrollBar();
    connect(hidden, &QScrollBar::rangeChanged, this, [this, hidden](int lowest, int highest) {
        setPageStep(hidden->pageStep());
        setSingleStep(hidden->singleStep());
        setRange(lowest, highest);
        setVisible(highest > lowest);
    });
    connect(hidden, &QScrollBar::valueChanged, this, &QScrollBar::setValue);
    connect(this, &QScrollBar::valueChanged, hidden, &QScrollBar::setValue);
    area->installEventFilter(this);
    place();
    setVisible(false);
}

QSize OverlayScrollBar::sizeHint() const {
    return {thickness, 0};
}

void OverlayScrollBar::place() {
    const QWidget* const area = parentWidget();
    setGeometry(area->width() - thickness, 0, thickness, area->height());
    raise();
}

bool OverlayScrollBar::eventFilter(QObject* watched, QEvent* event) {
    if (watched == parent() && event->type() == QEvent::Resize) {
        place();
    }
    return QScrollBar::eventFilter(watched, event);
}

void OverlayScrollBar::paintEvent(QPaintEvent*) {
    QStyleOptionSlider option;
    initStyleOption(&option);
    const QRectF knob =
        style()->subControlRect(QStyle::CC_ScrollBar, &option, QStyle::SC_ScrollBarSlider, this);
    const double opacity = isSliderDown() || underMouse() ? 0.5 : 0.25;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    fillRounded(painter,
                QRectF(inset, knob.top() + inset, thickness - 2 * inset, knob.height() - 2 * inset),
                thickness / 2.0 - inset, withOpacity(Theme::of(*this).text, opacity));
}

} // namespace murkwell
