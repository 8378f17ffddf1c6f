// A thin scroll bar over the right edge of a scrolling area, which gives no room away for it.
#pragma once

#include <QScrollBar>

class QAbstractScrollArea;

namespace murkwell {

class OverlayScrollBar final : public QScrollBar {
    Q_OBJECT

public:
    // Takes the place of the area's vertical bar.
    explicit OverlayScrollBar(QAbstractScrollArea* area);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void place();
};

} // namespace murkwell
