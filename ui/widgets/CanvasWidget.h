// The canvas on the screen: feeds pointer and keys to RedactCanvas and paints its shapes.
#pragma once

#include "ui/RedactCanvas.h"

#include <QPixmap>
#include <QWidget>

namespace murkwell {

class CanvasWidget final : public QWidget {
    Q_OBJECT

public:
    // The model is referred to and outlives the widget.
    explicit CanvasWidget(RedactModel& model, QWidget* parent = nullptr);

    // Repaints what differs from what is on the screen.
    void refresh();

    [[nodiscard]] const RedactModel& redactModel() const { return model; }
    // Where a box is on the screen of this widget.
    [[nodiscard]] QRect boxRect(const Redaction& redaction) const;
    void select(const Uuid& id);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    bool focusNextPrevChild(bool next) override;
    void changeEvent(QEvent* event) override;

private:
    void updateHatch();
    void updateBackdrop();
    void updateCursor(const QPointF& position);
    bool pressArrow(const QKeyEvent& key);
    void invalidateChanges(const std::vector<CanvasShape>& now);
    void announceSelection();

    RedactModel& model;
    RedactCanvas canvas;
    std::vector<CanvasShape> shown; // what the last paint was, or will be, about

    // The hatch alone, and hatch, shadow and page, in device pixels; and what they were made of.
    QPixmap hatch;
    QPixmap backdrop;
    PackedBitmapRef backdropPage;
    BitmapRef pagePixels; // of that page
    CanvasRect backdropFit{};
    std::optional<Uuid> announced;
};

} // namespace murkwell
