// The middle of the window: the page, or the drop zone while none is open, and the highlight while
// files are dragged over the window.
#pragma once

#include <QVariantAnimation>
#include <QWidget>

class QStackedLayout;

namespace murkwell {

class CanvasWidget;
class DropZone;
class RedactModel;
struct WindowState;

class CanvasArea final : public QWidget {
    Q_OBJECT

public:
    explicit CanvasArea(RedactModel& model, QWidget* parent = nullptr);

    void refresh(const WindowState& state);
    void setTargeted(bool isTargeted, bool animated);

    [[nodiscard]] CanvasWidget* canvas() const { return page; }

signals:
    void chooseFile();

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    class Highlight;

    void showTargeted(double share);

    QStackedLayout* faces;
    CanvasWidget* page;
    DropZone* dropZone;
    Highlight* highlight;
    QVariantAnimation targeting;
};

} // namespace murkwell
