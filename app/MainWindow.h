// The one window: its menus, and the content between them.
#pragma once

#include <QMainWindow>

class QAction;
class QMenu;

namespace murkwell {

class ContentView;
class FileOpenInbox;
class ModelRefresh;
class RedactModel;

class MainWindow final : public QMainWindow {
    Q_OBJECT

public:
    // Both are referred to and outlive the window.
    MainWindow(RedactModel& model, FileOpenInbox& inbox);

    // Whether things may move; they do unless told otherwise.
    void setAnimated(bool animated);

protected:
    void changeEvent(QEvent* event) override;

private:
    void addFileMenu();
    void addEditMenu();
    void addHelpMenu();
    void refresh();
    void tintIcons();
    void showAbout();

    RedactModel& model;
    ContentView* content;
    QAction* save = nullptr;
    QAction* saveAs = nullptr;
    QAction* undo = nullptr;
    QAction* redo = nullptr;
    QAction* checkForUpdates = nullptr;
};

} // namespace murkwell
