#include "ui/widgets/CanvasWidget.h"

#include "ui/NoisePreview.h"
#include "ui/WindowTexts.h"
#include "ui/widgets/CanvasAccessible.h"
#include "ui/widgets/ControlPainting.h"
#include "ui/widgets/HatchBackground.h"
#include "ui/widgets/PagePixmap.h"
#include "ui/widgets/Text.h"

#include <QEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>

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

QRectF toQRectF(const CanvasRect& rect) {
    return {rect.minX(), rect.minY(), rect.maxX() - rect.minX(), rect.maxY() - rect.minY()};
}

QColor colour(CanvasInk ink, double opacity, const Theme& theme) {
    switch (ink) {
    case CanvasInk::black:
        return withOpacity(Qt::black, opacity);
    case CanvasInk::white:
        return withOpacity(Qt::white, opacity);
    case CanvasInk::midGrey:
        return withOpacity(QColor::fromRgbF(0.5F, 0.5F, 0.5F), opacity);
    case CanvasInk::accent:
        return withOpacity(theme.accent, opacity);
    }
    return {};
}

QPen pen(const CanvasOutline& outline, const Theme& theme) {
    QPen line(colour(outline.ink, outline.opacity, theme), outline.width);
    line.setJoinStyle(Qt::MiterJoin);
    if (outline.dash.on > 0) {
        line.setCapStyle(Qt::FlatCap);
        line.setDashPattern({outline.dash.on / outline.width, outline.dash.off / outline.width});
    }
    return line;
}

// A pattern of the size of a large screen; larger boxes make a larger one.
const QImage& noisePattern(int columns, int rows) {
    static QImage pattern;
    if (pattern.width() < columns || pattern.height() < rows) {
        const QSize size(std::max({columns, pattern.width(), 256}),
                         std::max({rows, pattern.height(), 256}));
        pattern = QImage(size, QImage::Format_Grayscale8);
        for (int row = 0; row < size.height(); ++row) {
            uchar* const line = pattern.scanLine(row);
            for (int column = 0; column < size.width(); ++column) {
                const double grey = NoisePreview::grey(static_cast<std::uint64_t>(column),
                                                       static_cast<std::uint64_t>(row));
                line[column] = static_cast<uchar>(std::lround(grey * 255));
            }
        }
    }
    return pattern;
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
        update(toQRectF(shape.rect).toAlignedRect().adjusted(-1, -1, 1, 1));
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
    return toQRectF(viewRect(redaction.rect, canvas.fit())).toAlignedRect();
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
    const BitmapRef page = model.currentImage();
    const double ratio = devicePixelRatioF();
    const CanvasRect fit = canvas.fit();
    updateHatch();
    if (page == backdropPage && fit == backdropFit && hatch.size() == backdrop.size()) {
        return;
    }
    backdropPage = page;
    backdropFit = fit;
    backdrop = hatch;
    QPainter painter(&backdrop);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF place = toQRectF(fit);
    if (!page || place.isEmpty()) {
        return;
    }
    paintShadow(painter, place, 0, shadowBlur, shadowDrop, shadowOpacity);
    // On whole device pixels, or the text would be blurred a second time.
    const QRect pixels = QRectF(place.topLeft() * ratio, place.size() * ratio).toRect();
    const QPixmap scaled = scaledPage(*page, pixels.size().expandedTo(QSize(1, 1)));
    painter.scale(1 / ratio, 1 / ratio);
    painter.drawPixmap(pixels.topLeft(), scaled);
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
        if (toQRectF(shape.rect).intersects(dirty)) {
            paintShape(painter, shape, theme);
        }
    }
    if (showsFocusRing(*this) && !model.hasSelection()) {
        paintFocusRing(painter, rect(), 4, theme);
    }
}

void CanvasWidget::paintShape(QPainter& painter, const CanvasShape& shape,
                              const Theme& theme) const {
    using Form = CanvasShape::Form;
    if (shape.form == Form::page) {
        return; // in the backdrop
    }
    QRectF rect = toQRectF(shape.rect);
    if (shape.form == Form::noise) {
        paintNoise(painter, rect);
        return;
    }
    painter.setPen(Qt::NoPen);
    painter.setBrush(shape.fill ? QBrush(colour(shape.fill->ink, shape.fill->opacity, theme))
                                : QBrush(Qt::NoBrush));
    if (shape.outline) {
        painter.setPen(pen(*shape.outline, theme));
        const double inset =
            std::min({shape.outline->width / 2, rect.width() / 2, rect.height() / 2});
        rect.adjust(inset, inset, -inset, -inset);
    }
    if (shape.form == Form::ellipse) {
        painter.drawEllipse(rect);
    } else if (shape.form == Form::roundedRectangle) {
        painter.drawRoundedRect(rect, CanvasShape::draftCornerRadius,
                                CanvasShape::draftCornerRadius);
    } else {
        painter.drawRect(rect);
    }
}

void CanvasWidget::paintNoise(QPainter& painter, const QRectF& rect) const {
    const int columns = NoisePreview::cells(rect.width());
    const int rows = NoisePreview::cells(rect.height());
    painter.save();
    painter.setClipRect(rect, Qt::IntersectClip);
    const QRectF whole(rect.topLeft(),
                       QSizeF(columns * NoisePreview::cell, rows * NoisePreview::cell));
    painter.drawImage(whole, noisePattern(columns, rows), QRectF(0, 0, columns, rows));
    painter.restore();
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
