#include "ui/widgets/CanvasArea.h"

#include "ui/WindowState.h"
#include "ui/widgets/CanvasWidget.h"
#include "ui/widgets/ControlPainting.h"
#include "ui/widgets/DropZone.h"

#include <QPainter>
#include <QStackedLayout>

namespace murkwell {
namespace {

constexpr int targetingDuration = 120; // ms
constexpr double highlightInset = 6;
constexpr double highlightRadius = 10;
constexpr double highlightWidth = 3;

} // namespace

// Lies over the page and lets everything through.
class CanvasArea::Highlight final : public QWidget {
public:
    explicit Highlight(QWidget* parent) : QWidget(parent) {
        setAttribute(Qt::WA_TransparentForMouseEvents);
        setVisible(false);
    }

    void setShare(double opacity) {
        share = opacity;
        setVisible(share > 0);
        update();
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(withOpacity(Theme::of(*this).accent, share), highlightWidth));
        const double inset = highlightInset + highlightWidth / 2;
        const double radius = highlightRadius - highlightWidth / 2;
        painter.drawRoundedRect(QRectF(rect()).adjusted(inset, inset, -inset, -inset), radius,
                                radius);
    }

private:
    double share = 0;
};

CanvasArea::CanvasArea(RedactModel& model, QWidget* parent)
    : QWidget(parent), faces(new QStackedLayout(this)), page(new CanvasWidget(model)),
      dropZone(new DropZone), highlight(new Highlight(this)) {
    faces->addWidget(dropZone);
    faces->addWidget(page);
    connect(dropZone, &DropZone::chooseFile, this, &CanvasArea::chooseFile);
    targeting.setDuration(targetingDuration);
    targeting.setEasingCurve(QEasingCurve::InOutQuad);
    connect(&targeting, &QVariantAnimation::valueChanged, this,
            [this](const QVariant& share) { showTargeted(share.toDouble()); });
}

void CanvasArea::refresh(const WindowState& state) {
    faces->setCurrentWidget(state.hasDocument ? static_cast<QWidget*>(page) : dropZone);
    page->refresh();
}

void CanvasArea::setTargeted(bool isTargeted, bool animated) {
    const double now = targeting.currentValue().toDouble();
    const double wanted = isTargeted ? 1 : 0;
    targeting.stop();
    targeting.setStartValue(animated ? now : wanted);
    targeting.setEndValue(wanted);
    targeting.start();
}

void CanvasArea::showTargeted(double share) {
    dropZone->setTargeted(share);
    highlight->setShare(page->isVisibleTo(this) ? share : 0);
    highlight->raise();
}

void CanvasArea::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    highlight->resize(size());
}

} // namespace murkwell
