#include "ui/widgets/PageSidebar.h"

#include "ui/WindowTexts.h"
#include "ui/widgets/OverlayScrollBar.h"
#include "ui/widgets/PageThumb.h"
#include "ui/widgets/Text.h"
#include "ui/widgets/Theme.h"

#include <QAbstractListModel>
#include <QHBoxLayout>
#include <QLabel>
#include <QListView>
#include <QPainter>

#include <vector>

namespace murkwell {

// The rows of the list. What they say is read from the model whenever it is asked for.
class PageList final : public QAbstractListModel {
public:
    explicit PageList(const RedactModel& documentModel) : model(documentModel) {}

    // Has the rows painted anew that differ from what is on the screen: none while a box is
    // dragged.
    void refresh(int pageCount) {
        if (pageCount != static_cast<int>(shown.size())) {
            beginResetModel();
            shown.assign(static_cast<std::size_t>(pageCount), {});
            endResetModel();
        }
        for (int row = 0; row < pageCount; ++row) {
            const Row now{model.image(row), model.redactionCount(row)};
            Row& before = shown[static_cast<std::size_t>(row)];
            if (!(now == before)) {
                before = now;
                emit dataChanged(index(row), index(row));
            }
        }
    }

    [[nodiscard]] int rowCount(const QModelIndex& parent) const override {
        return parent.isValid() ? 0 : static_cast<int>(shown.size());
    }

    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override {
        if (role == Qt::DisplayRole) {
            return toQString(localized(WindowTexts::page, {index.row() + 1}));
        }
        if (role != Qt::AccessibleTextRole) {
            return {};
        }
        const std::size_t count = model.redactionCount(index.row());
        const QString name = data(index, Qt::DisplayRole).toString();
        return count == 0 ? name
                          : name + QStringLiteral(", ") + toQString(redactionCountLabel(count));
    }

private:
    // What a row is painted from.
    struct Row {
        PackedBitmapRef page;
        std::size_t count = 0;
        bool operator==(const Row&) const = default;
    };

    const RedactModel& model;
    std::vector<Row> shown;
};

PageSidebar::PageSidebar(RedactModel& documentModel, QWidget* parent)
    : QWidget(parent), model(documentModel), count(new QLabel), pages(new PageList(documentModel)),
      list(new QListView), thumbs(new PageThumb(documentModel, list)) {
    setFixedWidth(fixedWidth);
    pages->setParent(this);
    auto* const heading = new QLabel(text(WindowTexts::pages));
    heading->setFont(headline(font()));
    count->setFont(caption(font()));
    count->setForegroundRole(QPalette::PlaceholderText);
    auto* const header = new QHBoxLayout;
    header->setContentsMargins(12, 10, 12, 10);
    header->addWidget(heading);
    header->addStretch(1);
    header->addWidget(count);
    list->setModel(pages);
    list->setItemDelegate(thumbs);
    list->setUniformItemSizes(true);
    list->setMouseTracking(true);
    list->setFrameShape(QFrame::NoFrame);
    list->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list->viewport()->setBackgroundRole(QPalette::Window);
    new OverlayScrollBar(list); // which owns it
    list->setAccessibleName(text(WindowTexts::pages));
    connect(list->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            [this](const QModelIndex& now) {
                if (now.isValid() && now.row() != model.currentPage()) {
                    model.goToPage(now.row());
                }
            });
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 1, 0); // the divider at the right
    column->setSpacing(0);
    column->addLayout(header);
    column->addSpacing(1); // and the one below the header
    column->addWidget(list, 1);
}

void PageSidebar::refresh(const WindowState& state) {
    setVisible(state.hasManyPages);
    if (!state.hasManyPages) {
        thumbs->clear();
        pages->refresh(0);
        return;
    }
    count->setText(QString::number(state.pageCount));
    pages->refresh(static_cast<int>(state.pageCount));
    selectCurrentPage(static_cast<int>(state.currentPage));
}

void PageSidebar::selectCurrentPage(int page) {
    const QModelIndex row = pages->index(page);
    if (list->currentIndex() != row) {
        list->setCurrentIndex(row);
        list->scrollTo(row, QAbstractItemView::EnsureVisible);
    }
}

void PageSidebar::paintEvent(QPaintEvent*) {
    const Theme theme = Theme::of(*this);
    QPainter painter(this);
    painter.fillRect(width() - 1, 0, 1, height(), theme.line);
    painter.fillRect(0, list->y() - 1, width(), 1, theme.line);
}

} // namespace murkwell
