#include "app/MainWindow.h"

#include "app/External.h"
#include "model/RedactModel.h"
#include "ui/WindowTexts.h"
#include "ui/widgets/ContentView.h"
#include "ui/widgets/Icons.h"
#include "ui/widgets/ModelRefresh.h"
#include "ui/widgets/Text.h"
#include "ui/widgets/Theme.h"

#include <QAction>
#include <QEvent>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>

#include <utility>

namespace murkwell {
namespace {

constexpr QSize defaultSize(960, 660);

QAction* addCommand(QMenu& menu, std::string_view title, const QKeySequence& shortcut = {}) {
    auto* const action = menu.addAction(escaped(text(title)));
    action->setShortcut(shortcut);
    return action;
}

} // namespace

// The title never names the file: it may be sensitive, and titles are shown to whoever passes by.
MainWindow::MainWindow(RedactModel& documentModel, FileOpenInbox& inbox, Notice notice)
    : model(documentModel), noticeForAbout(std::move(notice)),
      content(new ContentView(documentModel, inbox)) {
    setObjectName(QStringLiteral("main"));
    setWindowTitle(QStringLiteral("Murkwell"));
    setCentralWidget(content);
    setContextMenuPolicy(Qt::NoContextMenu);
    addFileMenu();
    addEditMenu();
    addHelpMenu();
    resize(defaultSize);
    connect(new ModelRefresh(model, this), &ModelRefresh::refreshed, this, &MainWindow::refresh);
    refresh();
}

void MainWindow::setAnimated(bool animated) {
    content->setAnimated(animated);
}

void MainWindow::addFileMenu() {
    QMenu& menu = *menuBar()->addMenu(text(WindowTexts::fileMenu));
    connect(addCommand(menu, WindowTexts::open, Qt::CTRL | Qt::Key_O), &QAction::triggered, this,
            [this] { model.openPanel(); });
    menu.addSeparator();
    save = addCommand(menu, WindowTexts::save, Qt::CTRL | Qt::Key_S);
    connect(save, &QAction::triggered, this, [this] { model.saveSession(); });
    saveAs = addCommand(menu, WindowTexts::saveAs, Qt::CTRL | Qt::SHIFT | Qt::Key_S);
    connect(saveAs, &QAction::triggered, this, [this] { model.saveSessionAs(); });
    menu.addSeparator();
    connect(addCommand(menu, WindowTexts::quit, Qt::CTRL | Qt::Key_Q), &QAction::triggered, this,
            &QWidget::close);
}

void MainWindow::addEditMenu() {
    QMenu& menu = *menuBar()->addMenu(text(WindowTexts::editMenu));
    undo = menu.addAction(QString());
    undo->setShortcut(Qt::CTRL | Qt::Key_Z);
    connect(undo, &QAction::triggered, this, [this] { model.undo(); });
    redo = menu.addAction(QString());
    redo->setShortcut(Qt::CTRL | Qt::SHIFT | Qt::Key_Z);
    connect(redo, &QAction::triggered, this, [this] { model.redo(); });
}

void MainWindow::addHelpMenu() {
    QMenu& menu = *menuBar()->addMenu(text(WindowTexts::helpMenu));
    connect(addCommand(menu, WindowTexts::help, Qt::Key_F1), &QAction::triggered, this, &openHelp);
    menu.addSeparator();
    connect(addCommand(menu, WindowTexts::about), &QAction::triggered, this,
            &MainWindow::showAbout);
    checkForUpdates = addCommand(menu, WindowTexts::checkForUpdates);
    checkForUpdates->setIconVisibleInMenu(true);
    tintIcons();
    connect(checkForUpdates, &QAction::triggered, this, &murkwell::checkForUpdates);
}

void MainWindow::refresh() {
    const bool hasDocument = model.document().has_value();
    save->setEnabled(hasDocument);
    saveAs->setEnabled(hasDocument);
    undo->setEnabled(model.canUndo());
    undo->setText(escaped(toQString(model.undoTitle())));
    redo->setEnabled(model.canRedo());
    redo->setText(escaped(toQString(model.redoTitle())));
}

void MainWindow::changeEvent(QEvent* event) {
    QMainWindow::changeEvent(event);
    // It may come before the menus are there.
    if (event->type() == QEvent::PaletteChange && checkForUpdates != nullptr) {
        tintIcons();
    }
}

void MainWindow::tintIcons() {
    checkForUpdates->setIcon(
        icon(QStringLiteral("arrow.triangle.2.circlepath"), Theme::of(*this).text));
}

void MainWindow::showAbout() {
    auto* const box = new QMessageBox(this);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setWindowTitle(text(WindowTexts::about));
    box->setIconPixmap(windowIcon().pixmap(64));
    box->setTextFormat(Qt::PlainText);
    box->setText(QStringLiteral("Murkwell " MURKWELL_VERSION));
    QString information = text(WindowTexts::aboutText);
    if (const auto notice = noticeForAbout ? noticeForAbout() : std::nullopt) {
        information += QStringLiteral("\n\n") + QString::fromStdString(*notice);
    }
    box->setInformativeText(information);
    box->open();
}

} // namespace murkwell
