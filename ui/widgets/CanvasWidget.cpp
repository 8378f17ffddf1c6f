#include "ui/widgets/CanvasWidget.h"

#include "ui/WindowTexts.h"
#include "ui/widgets/CanvasAccessible.h"
#include "ui/widgets/CanvasPainting.h"
#include "ui/widgets/ControlPainting.h"
#include "ui/widgets/HatchBackground.h"
#include "ui/widgets/PagePixmap.h"
#include "ui/widgets/Text.h"

#include <QEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>

namespace murkwell {
namespace {

// Of the page's shadow.
constexpr double shadowBlur = 12;
constexpr double shadowDrop = 4;
constexpr double shadowOpacity = 0.22;

// What arrow keys do, in points.
constexpr double nudge = 1;
constexpr double largeNudge = 10;
constexpr double keyResize = 4;

CanvasPoint canvasPoint(const QPointF& position) {
    return {position.x(), position.y()};
}

} // namespace

CanvasWidget::CanvasWidget(RedactModel& canvasModel, QWidget* parent)
    : QWidget(parent), model(canvasModel), canvas(canvasModel) {
    CanvasAccessible::install();
    setAccessibleName(text(WindowTexts::canvas));
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setAttribute(Qt::WA_OpaquePaintEvent);
}

void CanvasWidget::refresh() {
    if (model.currentImage() != backdropPage) {
        update();
    } else {
        invalidateChanges(canvas.shapes());
    }
    CanvasAccessible::announceBoxes(*this);
    announceSelection();
}

void CanvasWidget::invalidateChanges(const std::vector<CanvasShape>& now) {
    const auto touch = [this](const CanvasShape& shape) {
        update(CanvasPainting::toQRectF(shape.rect).toAlignedRect().adjusted(-1, -1, 1, 1));
    };
    const std::size_t common = std::min(shown.size(), now.size());
    for (std::size_t i = 0; i < common; ++i) {
        if (!(shown[i] == now[i])) {
            touch(shown[i]);
            touch(now[i]);
        }
    }
    std::for_each(shown.begin() + static_cast<std::ptrdiff_t>(common), shown.end(), touch);
    std::for_each(now.begin() + static_cast<std::ptrdiff_t>(common), now.end(), touch);
    shown = now;
}

void CanvasWidget::announceSelection() {
    if (announced != model.selectedID()) {
        announced = model.selectedID();
        if (hasFocus()) {
            CanvasAccessible::announceFocus(*this);
        }
    }
}

QRect CanvasWidget::boxRect(const Redaction& redaction) const {
    return CanvasPainting::toQRectF(viewRect(redaction.rect, canvas.fit())).toAlignedRect();
}

void CanvasWidget::select(const Uuid& id) {
    model.selectedID = id;
}

void CanvasWidget::resizeEvent(QResizeEvent*) {
    canvas.resize({static_cast<double>(width()), static_cast<double>(height())});
}

void CanvasWidget::changeEvent(QEvent* event) {
    if (event->type() == QEvent::PaletteChange) {
        hatch = {};
        backdrop = {};
        update();
    }
    QWidget::changeEvent(event);
}

void CanvasWidget::updateHatch() {
    const double ratio = devicePixelRatioF();
    const QSize pixels = (QSizeF(size()) * ratio).toSize();
    if (hatch.size() != pixels) {
        hatch = QPixmap(pixels);
        hatch.setDevicePixelRatio(ratio);
        QPainter painter(&hatch);
        HatchBackground::paint(painter, QSizeF(size()), Theme::of(*this));
    }
}

void CanvasWidget::updateBackdrop() {
    const PackedBitmapRef page = model.currentImage();
    const double ratio = devicePixelRatioF();
    const CanvasRect fit = canvas.fit();
    updateHatch();
    if (page == backdropPage && fit == backdropFit && hatch.size() == backdrop.size()) {
        return;
    }
    if (page != backdropPage) {
        backdropPage = page;
        pagePixels = page ? page->unpack() : nullptr;
    }
    backdropFit = fit;
    backdrop = hatch;
    QPainter painter(&backdrop);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF place = CanvasPainting::toQRectF(fit);
    if (!pagePixels || place.isEmpty()) {
        return;
    }
    paintShadow(painter, place, 0, shadowBlur, shadowDrop, shadowOpacity);
    // On whole device pixels, or the text would be blurred a second time.
    const QRect device = QRectF(place.topLeft() * ratio, place.size() * ratio).toRect();
    const QPixmap scaled = scaledPage(*pagePixels, device.size().expandedTo(QSize(1, 1)));
    painter.scale(1 / ratio, 1 / ratio);
    painter.drawPixmap(device.topLeft(), scaled);
}

void CanvasWidget::paintEvent(QPaintEvent* event) {
    updateBackdrop();
    shown = canvas.shapes();
    QPainter painter(this);
    const QRectF dirty(event->rect());
    const double ratio = backdrop.devicePixelRatio();
    painter.drawPixmap(dirty, backdrop, QRectF(dirty.topLeft() * ratio, dirty.size() * ratio));
    painter.setRenderHint(QPainter::Antialiasing);
    const Theme theme = Theme::of(*this);
    for (const CanvasShape& shape : shown) {
        if (CanvasPainting::toQRectF(shape.rect).intersects(dirty)) {
            CanvasPainting::paint(painter, shape, theme);
        }
    }
    if (showsFocusRing(*this) && !model.hasSelection()) {
        paintFocusRing(painter, rect(), 4, theme);
    }
}

void CanvasWidget::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) {
        canvas.press(canvasPoint(event->position()));
        refresh();
    }
}

void CanvasWidget::mouseMoveEvent(QMouseEvent* event) {
    if ((event->buttons() & Qt::LeftButton) != 0) {
        canvas.drag(canvasPoint(event->position()));
        refresh();
    } else {
        canvas.finish(); // the release went elsewhere, to a panel say
        updateCursor(event->position());
    }
}

void CanvasWidget::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) {
        canvas.release(canvasPoint(event->position()));
        refresh();
        updateCursor(event->position());
    }
}

void CanvasWidget::updateCursor(const QPointF& position) {
    const auto target = canvas.targetAt(canvasPoint(position));
    if (!target) {
        unsetCursor();
    } else if (const auto* const handle = std::get_if<RedactCanvas::Handle>(&*target)) {
        const bool falls =
            handle->corner == Corner::topLeft || handle->corner == Corner::bottomRight;
        setCursor(falls ? Qt::SizeFDiagCursor : Qt::SizeBDiagCursor);
    } else if (std::holds_alternative<RedactCanvas::Box>(*target)) {
        setCursor(Qt::SizeAllCursor);
    } else {
        setCursor(Qt::CrossCursor);
    }
}

void CanvasWidget::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Insert) {
        canvas.addInMiddle();
    } else if (event->key() == Qt::Key_Escape && model.hasSelection()) {
        model.selectedID = std::nullopt;
    } else if (!pressArrow(*event)) {
        QWidget::keyPressEvent(event);
        return;
    }
    refresh();
}

bool CanvasWidget::pressArrow(const QKeyEvent& key) {
    CanvasTranslation by{};
    switch (key.key()) {
    case Qt::Key_Left:
        by.dx = -1;
        break;
    case Qt::Key_Right:
        by.dx = 1;
        break;
    case Qt::Key_Up:
        by.dy = -1;
        break;
    case Qt::Key_Down:
        by.dy = 1;
        break;
    default:
        return false;
    }
    const bool shift = (key.modifiers() & Qt::ShiftModifier) != 0;
    const bool alt = (key.modifiers() & Qt::AltModifier) != 0;
    const double step = shift && alt ? keyResize : shift ? largeNudge : nudge;
    by = {by.dx * step, by.dy * step};
    if (shift && alt) {
        canvas.resizeSelected(by);
    } else {
        canvas.moveSelected(by);
    }
    return true;
}

// Tab walks the boxes before it leaves.
bool CanvasWidget::focusNextPrevChild(bool next) {
    if (canvas.selectNeighbour(next)) {
        refresh();
        return true;
    }
    return QWidget::focusNextPrevChild(next);
}

void CanvasWidget::focusInEvent(QFocusEvent* event) {
    QWidget::focusInEvent(event);
    update();
    CanvasAccessible::announceFocus(*this);
}

} // namespace murkwell
