// The pages of a document as a list of thumbnails, the current one selected.
#pragma once

#include "ui/WindowState.h"

#include <QWidget>

class QLabel;
class QListView;

namespace murkwell {

class PageList;
class PageThumb;

class PageSidebar final : public QWidget {
    Q_OBJECT

public:
    static constexpr int fixedWidth = 168;

    explicit PageSidebar(RedactModel& model, QWidget* parent = nullptr);

    void refresh(const WindowState& state);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void selectCurrentPage(int page);

    RedactModel& model;
    QLabel* count;
    PageList* pages;
    QListView* list;
    PageThumb* thumbs;
};

} // namespace murkwell
