// The content of the one window. It holds no document data: what it shows is read from the model,
// and every control calls one of the model's operations.
#pragma once

#include "model/Published.h"
#include "ui/WindowState.h"

#include <QWidget>

namespace murkwell {

class AutoDetectPopover;
class CanvasArea;
class ControlsBar;
class FileOpenInbox;
class FindPopover;
class HeaderBar;
class PageSidebar;
class Popover;
class RedactModel;

class ContentView final : public QWidget {
    Q_OBJECT

public:
    // Both are referred to and outlive the view.
    ContentView(RedactModel& model, FileOpenInbox& inbox, QWidget* parent = nullptr);
    ~ContentView() override;

    // Whether changes of the window's face are animated; they are unless the desktop asks for
    // reduced motion.
    void setAnimated(bool animated);

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void arrange();
    void connectPopovers();
    void toggle(Popover* popover);
    void refresh();
    void drainInbox();
    void open(const std::vector<std::filesystem::path>& files);
    [[nodiscard]] bool removesSelection(const QKeyEvent& key) const;
    void setTargeted(bool targeted);

    RedactModel& model;
    FileOpenInbox& inbox;
    Observers::Observation announcements;
    HeaderBar* header;
    QWidget* headerDivider;
    PageSidebar* sidebar;
    CanvasArea* canvasArea;
    ControlsBar* controls;
    FindPopover* findPopover;
    AutoDetectPopover* autoDetectPopover;
    bool isAnimated = true;
    bool isTargeted = false;
    // The files that are over the window. Asked for when they enter it: at the drop, the program
    // that they come from may not answer in time.
    std::vector<std::filesystem::path> dragged;
    std::int64_t shownPages = 0; // of the last refresh; 0 is the face without a document
};

} // namespace murkwell
