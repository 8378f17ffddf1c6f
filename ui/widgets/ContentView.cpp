#include "ui/widgets/ContentView.h"

#include "io/FileAddress.h"
#include "model/RedactModel.h"
#include "ui/FileOpenInbox.h"
#include "ui/widgets/AutoDetectPopover.h"
#include "ui/widgets/BusyCursor.h"
#include "ui/widgets/Button.h"
#include "ui/widgets/CanvasArea.h"
#include "ui/widgets/ControlsBar.h"
#include "ui/widgets/FaceTransition.h"
#include "ui/widgets/FindPopover.h"
#include "ui/widgets/HeaderBar.h"
#include "ui/widgets/ModelRefresh.h"
#include "ui/widgets/PageSidebar.h"
#include "ui/widgets/Theme.h"

#include <QApplication>
#include <QDropEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMimeData>
#include <QPainter>
#include <QTimer>

#include <utility>

namespace murkwell {
namespace {

constexpr QSize smallestSize(700, 480);

class Divider final : public QWidget {
public:
    Divider() { setFixedHeight(1); }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.fillRect(rect(), Theme::of(*this).line);
    }
};

// The desktop's own bytes, in which names are whole; Qt's addresses would lose some.
std::vector<std::filesystem::path> localFiles(const QMimeData& items) {
    return filesOfAddressList(items.data(QStringLiteral("text/uri-list")).toStdString());
}

} // namespace

ContentView::ContentView(RedactModel& documentModel, FileOpenInbox& fileInbox, QWidget* parent)
    : QWidget(parent), model(documentModel), inbox(fileInbox), header(new HeaderBar(documentModel)),
      headerDivider(new Divider), sidebar(new PageSidebar(documentModel)),
      canvasArea(new CanvasArea(documentModel)), controls(new ControlsBar(documentModel)),
      findPopover(new FindPopover(documentModel, controls->findButton(), this)),
      autoDetectPopover(new AutoDetectPopover(documentModel, controls->autoDetectButton(), this)) {
    setMinimumSize(smallestSize);
    setAcceptDrops(true);
    arrange();
    connectPopovers();
    connect(canvasArea, &CanvasArea::chooseFile, this, [this] { model.openPanel(); });
    connect(new ModelRefresh(model, this), &ModelRefresh::refreshed, this, &ContentView::refresh);
    refresh();
}

ContentView::~ContentView() = default;

void ContentView::arrange() {
    auto* const column = new QVBoxLayout;
    column->setSpacing(0);
    column->addWidget(header);
    column->addWidget(headerDivider);
    column->addWidget(canvasArea, 1);
    column->addWidget(new Divider);
    column->addWidget(controls);
    auto* const row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    row->addWidget(sidebar);
    row->addLayout(column, 1);
}

void ContentView::connectPopovers() {
    connect(controls->findButton(), &QPushButton::clicked, this, [this] { toggle(findPopover); });
    connect(controls->autoDetectButton(), &QPushButton::clicked, this,
            [this] { toggle(autoDetectPopover); });
}

void ContentView::toggle(Popover* popover) {
    if (popover->isOpen()) {
        popover->dismiss();
    } else {
        model.prepareSearch();
        popover->open();
    }
}

void ContentView::setAnimated(bool animated) {
    isAnimated = animated;
}

void ContentView::refresh() {
    const WindowState state(model);
    if (state.pageCount != shownPages) {
        shownPages = state.pageCount;
        if (isAnimated && isVisible()) {
            FaceTransition::start(this);
        }
    }
    if (!state.hasDocument) {
        findPopover->dismiss();
        autoDetectPopover->dismiss();
    }
    header->refresh(state);
    headerDivider->setVisible(state.hasDocument);
    sidebar->refresh(state);
    canvasArea->refresh(state);
    controls->refresh(state);
    findPopover->refresh(state);
    autoDetectPopover->refresh(state);
}

void ContentView::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (announcements) {
        return; // shown again after it was minimised
    }
    announcements = inbox.observe([this] { drainInbox(); });
    // Not before the window has been painted once: opening a long document takes a while.
    QTimer::singleShot(0, this, &ContentView::drainInbox);
    qApp->installEventFilter(this);
}

void ContentView::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    if (!event->spontaneous()) {
        announcements.reset();
        qApp->removeEventFilter(this);
    }
}

void ContentView::drainInbox() {
    open(inbox.drain());
}

void ContentView::open(const std::vector<std::filesystem::path>& files) {
    if (!files.empty()) {
        BusyCursor::untilIdle();
        model.open(files);
    }
}

// The Delete keys, wherever the keyboard is, unless they edit a text.
bool ContentView::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress &&
        removesSelection(*static_cast<const QKeyEvent*>(event))) {
        model.remove(*model.selectedID());
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

bool ContentView::removesSelection(const QKeyEvent& key) const {
    const bool isDelete = key.key() == Qt::Key_Backspace || key.key() == Qt::Key_Delete;
    const QWidget* const focus = QApplication::focusWidget();
    const bool editsText = qobject_cast<const QLineEdit*>(focus) != nullptr;
    return isDelete && !editsText && QApplication::activeModalWidget() == nullptr &&
           model.hasSelection();
}

void ContentView::dragEnterEvent(QDragEnterEvent* event) {
    dragged = localFiles(*event->mimeData());
    if (!dragged.empty()) {
        event->acceptProposedAction();
        setTargeted(true);
    }
}

void ContentView::dragLeaveEvent(QDragLeaveEvent*) {
    setTargeted(false);
}

void ContentView::dropEvent(QDropEvent* event) {
    setTargeted(false);
    event->acceptProposedAction();
    // After the drop, so that the program they come from does not wait for the loading.
    QTimer::singleShot(0, this, [this] { open(std::exchange(dragged, {})); });
}

void ContentView::setTargeted(bool targeted) {
    if (isTargeted != targeted) {
        isTargeted = targeted;
        canvasArea->setTargeted(targeted, isAnimated);
    }
}

void ContentView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), Theme::of(*this).bar);
}

} // namespace murkwell
