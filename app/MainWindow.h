// The one window: its menus, and the content between them.
#pragma once

#include <QMainWindow>

#include <functional>
#include <optional>
#include <string>

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
    // What About says besides, when there is something.
    using Notice = std::function<std::optional<std::string>()>;

    // Model and inbox are referred to and outlive the window.
    MainWindow(RedactModel& model, FileOpenInbox& inbox, Notice notice = {});

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
    Notice noticeForAbout;
    ContentView* content;
    QAction* save = nullptr;
    QAction* saveAs = nullptr;
    QAction* undo = nullptr;
    QAction* redo = nullptr;
    QAction* checkForUpdates = nullptr;
};

} // namespace murkwell
