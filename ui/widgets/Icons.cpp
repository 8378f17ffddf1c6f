#include "ui/widgets/Icons.h"

#include <QFile>
#include <QPaintDevice>
#include <QPixmap>
#include <QPixmapCache>
#include <QSvgRenderer>

namespace murkwell {
namespace {

// The drawing in the colour, of so many device pixels a side.
QPixmap tinted(const QString& name, int side, const QColor& colour) {
    const QString key = QStringLiteral("icon:%1:%2:%3").arg(name).arg(side).arg(colour.rgba());
    QPixmap pixmap;
    if (QPixmapCache::find(key, &pixmap)) {
        return pixmap;
    }
    const QString file = QStringLiteral(":/icons/%1.svg").arg(name);
    QSvgRenderer drawing;
    if (!QFile::exists(file) || !drawing.load(file)) {
        return {};
    }
    pixmap = QPixmap(side, side);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    drawing.render(&painter, QRectF(0, 0, side, side));
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(pixmap.rect(), colour);
    painter.end();
    QPixmapCache::insert(key, pixmap);
    return pixmap;
}

} // namespace

void paintIcon(QPainter& painter, const QString& name, const QRectF& square, const QColor& colour) {
    const double ratio = painter.device()->devicePixelRatioF();
    const QPixmap pixmap = tinted(name, qRound(square.width() * ratio), colour);
    if (!pixmap.isNull()) {
        painter.drawPixmap(square, pixmap, QRectF(pixmap.rect()));
    }
}

QIcon icon(const QString& name, const QColor& colour) {
    QIcon result;
    for (const int scale : {1, 2, 3}) {
        QPixmap pixmap = tinted(name, iconSide * scale, colour);
        pixmap.setDevicePixelRatio(scale);
        result.addPixmap(pixmap);
    }
    return result;
}

} // namespace murkwell
