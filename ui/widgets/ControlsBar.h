// What can be done: the status line, and below it the controls for the open document, or the way to
// open one.
#pragma once

#include "ui/WindowState.h"

#include <QWidget>

class QAction;
class QLabel;

namespace murkwell {

class Button;
class SegmentedControl;
class StatusLine;

class ControlsBar final : public QWidget {
    Q_OBJECT

public:
    explicit ControlsBar(RedactModel& model, QWidget* parent = nullptr);

    void refresh(const WindowState& state);

    [[nodiscard]] Button* findButton() const { return find; }
    [[nodiscard]] Button* autoDetectButton() const { return autoDetect; }

protected:
    void resizeEvent(QResizeEvent* event) override;
    bool event(QEvent* event) override;

private:
    [[nodiscard]] QWidget* openRow();
    [[nodiscard]] QWidget* documentRow();
    void addStyles();
    void addClearMenu();
    void setTipsAndKeys();
    void showCount(const WindowState& state);
    // How little the row shows to fit: each step leaves out more than the one before.
    void fit();
    void shrink(int step);
    [[nodiscard]] int neededWidth(int step) const;
    [[nodiscard]] QString countText(int step) const;

    RedactModel& model;
    StatusLine* status;
    QWidget* withoutDocument;
    QWidget* withDocument;
    SegmentedControl* style;
    Button* find;
    Button* autoDetect;
    QLabel* count;
    Button* remove;
    Button* clear;
    QAction* clearPage;
    QAction* clearDetected;
    Button* reveal;
    Button* exportFile;
    std::size_t shownCount = 0;
};

} // namespace murkwell
