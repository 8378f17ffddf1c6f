#include "ui/widgets/PageThumb.h"

#include "model/RedactModel.h"
#include "ui/WindowState.h"
#include "ui/WindowTexts.h"
#include "ui/widgets/ControlPainting.h"
#include "ui/widgets/PagePixmap.h"
#include "ui/widgets/Text.h"

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QPainter>
#include <QPainterPath>
#include <QToolTip>

#include <cmath>

namespace murkwell {
namespace {

constexpr QSizeF thumbSize(40, 52);
constexpr double thumbRadius = 4;
constexpr int rowHeight = 64;
constexpr int rowMargin = 5;  // of the highlight, left and right
constexpr int rowPadding = 4; // inside the highlight
constexpr int itemGap = 9;
constexpr int lineGap = 2;
constexpr int badgeGap = 3;

QFont badgeFont(const QFont& font) {
    return medium(caption(font));
}

} // namespace

PageThumb::PageThumb(const RedactModel& pages, QObject* parent)
    : QStyledItemDelegate(parent), model(pages), view(qobject_cast<QWidget*>(parent)) {}

void PageThumb::clear() {
    drawings.clear();
}

QSize PageThumb::sizeHint(const QStyleOptionViewItem& option, const QModelIndex&) const {
    const int lines =
        option.fontMetrics.height() + QFontMetrics(caption(option.font)).height() + lineGap;
    return {0, std::max(rowHeight, lines + 8)};
}

void PageThumb::paint(QPainter* painter, const QStyleOptionViewItem& option,
                      const QModelIndex& index) const {
    const Theme theme = Theme::of(*view);
    const int page = index.row();
    const QRectF row = QRectF(option.rect).adjusted(rowMargin, 1, -rowMargin, -1);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    if ((option.state & QStyle::State_Selected) != 0) {
        fillRounded(*painter, row, controlRadius, withOpacity(theme.accent, 0.2));
    } else if ((option.state & QStyle::State_MouseOver) != 0) {
        fillRounded(*painter, row, controlRadius, withOpacity(theme.text, 0.05));
    }
    if ((option.state & QStyle::State_Selected) != 0 && showsFocusRing(*view)) {
        paintFocusRing(*painter, row, controlRadius, theme);
    }
    QRectF inside = row.adjusted(rowPadding, 0, -rowPadding, 0);
    const QRectF frame(
        QPointF(inside.left(), std::floor(row.center().y() - thumbSize.height() / 2)), thumbSize);
    paintThumbnail(*painter, frame, page);
    inside.setLeft(frame.right() + itemGap);
    const std::size_t count = model.redactionCount(page);
    if (count > 0) {
        inside = paintBadge(*painter, inside, count, option.font);
    }
    paintTexts(*painter, inside, page, option.font);
    painter->restore();
}

void PageThumb::paintThumbnail(QPainter& painter, const QRectF& frame, int page) const {
    const Theme theme = Theme::of(*view);
    QPainterPath rounded;
    rounded.addRoundedRect(frame, thumbRadius, thumbRadius);
    const QPixmap drawing =
        drawingOf(page, (thumbSize * painter.device()->devicePixelRatioF()).toSize());
    if (!drawing.isNull()) {
        painter.save();
        painter.setClipPath(rounded, Qt::IntersectClip);
        painter.drawPixmap(frame, drawing, QRectF(drawing.rect()));
        painter.restore();
    } else {
        painter.fillPath(rounded, Qt::white);
        painter.fillPath(rounded, withOpacity(QColor(128, 128, 128), 0.2));
    }
    outlineRounded(painter, frame, thumbRadius, theme.faintest);
}

QPixmap PageThumb::drawingOf(int page, const QSize& size) const {
    const PackedBitmapRef image = model.image(page);
    const Drawing* const known = drawings.object(page);
    if (known != nullptr && known->page == image && known->pixmap.size() == size) {
        return known->pixmap;
    }
    const BitmapRef pixels = image ? image->unpack() : nullptr;
    if (!pixels) {
        return {};
    }
    const QPixmap pixmap = thumbnail(*pixels, size);
    drawings.insert(page, new Drawing{image, pixmap});
    return pixmap;
}

QRectF PageThumb::paintBadge(QPainter& painter, const QRectF& row, std::size_t count,
                             const QFont& font) const {
    const Theme theme = Theme::of(*view);
    const QString number = QString::number(count);
    painter.setFont(badgeFont(font));
    const QFontMetrics metrics = painter.fontMetrics();
    const double height = metrics.height() + 4;
    const double width = std::max<double>(metrics.horizontalAdvance(number) + 12, height);
    const QRectF badge(row.right() - width, row.center().y() - height / 2, width, height);
    fillRounded(painter, badge, height / 2, withOpacity(theme.accent, 0.18));
    painter.setPen(theme.accentText);
    painter.drawText(badge, Qt::AlignCenter, number);
    return row.adjusted(0, 0, -width - badgeGap, 0);
}

void PageThumb::paintTexts(QPainter& painter, const QRectF& space, int page,
                           const QFont& font) const {
    const Theme theme = Theme::of(*view);
    const std::size_t count = model.redactionCount(page);
    const QFontMetrics nameMetrics(font);
    const QFontMetrics countMetrics(caption(font));
    const double below = count > 0 ? lineGap + countMetrics.height() : 0;
    const double top = std::floor(space.center().y() - (nameMetrics.height() + below) / 2);
    const int width = static_cast<int>(space.width());
    const QString name = toQString(localized(WindowTexts::page, {page + 1}));
    painter.setFont(font);
    painter.setPen(theme.text);
    painter.drawText(QRectF(space.left(), top, width, nameMetrics.height()), Qt::AlignVCenter,
                     nameMetrics.elidedText(name, Qt::ElideRight, width));
    if (count > 0) {
        painter.setFont(caption(font));
        painter.setPen(theme.dimmed);
        painter.drawText(
            QRectF(space.left(), top + nameMetrics.height() + lineGap, width,
                   countMetrics.height()),
            Qt::AlignVCenter,
            countMetrics.elidedText(toQString(redactionCountLabel(count)), Qt::ElideRight, width));
    }
}

bool PageThumb::helpEvent(QHelpEvent* event, QAbstractItemView* list,
                          const QStyleOptionViewItem& option, const QModelIndex& index) {
    if (event->type() != QEvent::ToolTip || !index.isValid()) {
        return QStyledItemDelegate::helpEvent(event, list, option, index);
    }
    QToolTip::showText(event->globalPos(), index.data(Qt::AccessibleTextRole).toString(), list);
    return true;
}

} // namespace murkwell
