// A row of the sidebar: the page in small, its number, and how much is redacted on it.
#pragma once

#include "core/PackedBitmap.h"

#include <QCache>
#include <QPixmap>
#include <QStyledItemDelegate>

namespace murkwell {

class RedactModel;

class PageThumb final : public QStyledItemDelegate {
    Q_OBJECT

public:
    explicit PageThumb(const RedactModel& model, QObject* parent = nullptr);

    // Forgets the drawings of pages that are not shown any more.
    void clear();

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option,
                                 const QModelIndex& index) const override;
    bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                   const QModelIndex& index) override;

private:
    struct Drawing {
        PackedBitmapRef page;
        QPixmap pixmap;
    };

    void paintThumbnail(QPainter& painter, const QRectF& frame, int page) const;
    // Null when there is no such page or no memory for it.
    [[nodiscard]] QPixmap drawingOf(int page, const QSize& size) const;
    void paintTexts(QPainter& painter, const QRectF& space, int page, const QFont& font) const;
    // The space that is left of it.
    [[nodiscard]] QRectF paintBadge(QPainter& painter, const QRectF& row, std::size_t count,
                                    const QFont& font) const;

    const RedactModel& model;
    const QWidget* view;
    // Made when a row is first painted. As many as are looked at in one go: a document may have
    // thousands of pages.
    mutable QCache<int, Drawing> drawings{500};
};

} // namespace murkwell
