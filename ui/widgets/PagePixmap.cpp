#include "ui/widgets/PagePixmap.h"

#include <QPainter>

namespace murkwell {

QImage viewOf(const Bitmap& page) {
    const auto* const bytes = reinterpret_cast<const uchar*>(page.pixels().data());
    return {bytes, page.width(), page.height(),
            static_cast<qsizetype>(page.width()) * static_cast<qsizetype>(sizeof(Rgba)),
            QImage::Format_RGBA8888_Premultiplied};
}

QPixmap scaledPage(const Bitmap& page, const QSize& size) {
    const QImage scaled =
        viewOf(page).scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    return QPixmap::fromImage(scaled);
}

QPixmap thumbnail(const Bitmap& page, const QSize& frame) {
    constexpr int samples = 8; // a side, for each pixel of the thumbnail
    QImage image = viewOf(page);
    const QSize fitted = image.size().scaled(frame, Qt::KeepAspectRatio).expandedTo(QSize(1, 1));
    if (image.width() > samples * fitted.width() && image.height() > samples * fitted.height()) {
        image = image.scaled(fitted * samples, Qt::IgnoreAspectRatio, Qt::FastTransformation);
    }
    image = image.scaled(fitted, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    QPixmap onWhite(frame);
    onWhite.fill(Qt::white);
    QPainter painter(&onWhite);
    painter.drawImage((frame.width() - fitted.width()) / 2, (frame.height() - fitted.height()) / 2,
                      image);
    return onWhite;
}

} // namespace murkwell
