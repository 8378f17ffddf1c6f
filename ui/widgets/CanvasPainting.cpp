#include "ui/widgets/CanvasPainting.h"

#include "ui/NoisePreview.h"
#include "ui/widgets/Theme.h"

#include <QImage>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace murkwell::CanvasPainting {
namespace {

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

void paintNoise(QPainter& painter, const QRectF& rect) {
    const int columns = NoisePreview::cells(rect.width());
    const int rows = NoisePreview::cells(rect.height());
    painter.save();
    painter.setClipRect(rect, Qt::IntersectClip);
    const QRectF whole(rect.topLeft(),
                       QSizeF(columns * NoisePreview::cell, rows * NoisePreview::cell));
    painter.drawImage(whole, noisePattern(columns, rows), QRectF(0, 0, columns, rows));
    painter.restore();
}

} // namespace

QRectF toQRectF(const CanvasRect& rect) {
    return {rect.minX(), rect.minY(), rect.maxX() - rect.minX(), rect.maxY() - rect.minY()};
}

void paint(QPainter& painter, const CanvasShape& shape, const Theme& theme) {
    using Form = CanvasShape::Form;
    if (shape.form == Form::page) {
        return;
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

} // namespace murkwell::CanvasPainting
