#include "ui/widgets/ControlsBar.h"

#include "ui/WindowTexts.h"
#include "ui/widgets/Button.h"
#include "ui/widgets/SegmentedControl.h"
#include "ui/widgets/StatusLine.h"
#include "ui/widgets/Text.h"

#include <QAction>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>

#include <algorithm>

namespace murkwell {
namespace {

constexpr int inset = 16;
constexpr int rowGap = 12;
constexpr int itemGap = 8;

// From which step on a control shows less.
enum Step { allTexts, chosenStyleOnly, clearIcon, countNumber, searchIcons, styleIcons, tight };

SegmentTexts styleTexts(int step) {
    if (step >= styleIcons) {
        return SegmentTexts::none;
    }
    return step >= chosenStyleOnly ? SegmentTexts::chosenOnly : SegmentTexts::all;
}

QString spokenCount(std::size_t count) {
    return toQString(redactionCountLabel(count));
}

} // namespace

ControlsBar::ControlsBar(RedactModel& documentModel, QWidget* parent)
    : QWidget(parent), model(documentModel), status(new StatusLine),
      style(new SegmentedControl(text(WindowTexts::style))),
      find(new Button(Button::Look::standard, QStringLiteral("text.magnifyingglass"),
                      text(WindowTexts::find))),
      autoDetect(new Button(Button::Look::standard, QStringLiteral("sparkles"),
                            text(WindowTexts::autoDetect))),
      count(new QLabel),
      remove(new Button(Button::Look::plain, QStringLiteral("trash"), text(WindowTexts::remove))),
      clear(new Button(Button::Look::plain, QStringLiteral("eraser"), text(WindowTexts::clear))),
      reveal(new Button(Button::Look::standard, {}, text(WindowTexts::reveal))),
      exportFile(new Button(Button::Look::prominent, {}, text(WindowTexts::exportFile))) {
    withoutDocument = openRow();
    withDocument = documentRow();
    setTipsAndKeys();
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(inset, inset, inset, inset);
    column->setSpacing(rowGap);
    column->addWidget(status);
    column->addWidget(withoutDocument);
    column->addWidget(withDocument);
}

QWidget* ControlsBar::openRow() {
    auto* const open = new Button(Button::Look::standard, {}, text(WindowTexts::open));
    open->setToolTip(text(WindowTexts::openTip));
    connect(open, &QPushButton::clicked, this, [this] { model.openPanel(); });
    auto* const row = new QWidget;
    auto* const items = new QHBoxLayout(row);
    items->setContentsMargins(0, 0, 0, 0);
    items->addWidget(open);
    items->addStretch(1);
    return row;
}

QWidget* ControlsBar::documentRow() {
    addStyles();
    addClearMenu();
    count->setForegroundRole(QPalette::PlaceholderText);
    remove->setCompact(true);
    connect(remove, &QPushButton::clicked, this, [this] {
        if (const auto selected = model.selectedID()) {
            model.remove(*selected);
        }
    });
    connect(reveal, &QPushButton::clicked, this, [this] { model.revealLastExport(); });
    connect(exportFile, &QPushButton::clicked, this, [this] { model.exportDocument(); });
    auto* const row = new QWidget;
    auto* const items = new QHBoxLayout(row);
    items->setContentsMargins(0, 0, 0, 0);
    items->setSpacing(itemGap);
    items->addWidget(style);
    items->addWidget(find);
    items->addWidget(autoDetect);
    items->addStretch(1);
    items->addWidget(count);
    items->addWidget(remove);
    items->addWidget(clear);
    items->addWidget(reveal);
    items->addWidget(exportFile);
    return row;
}

void ControlsBar::addStyles() {
    for (const RedactionStyle each : allRedactionStyles) {
        style->addSegment(toQString(symbolName(each)), text(label(each)));
    }
    connect(style, &SegmentedControl::chosen, this, [this](int index) {
        model.tool = allRedactionStyles[static_cast<std::size_t>(index)];
        model.applyToolToSelection();
        fit();
    });
}

void ControlsBar::addClearMenu() {
    auto* const menu = new QMenu(clear);
    clearPage = menu->addAction(text(WindowTexts::clearThisPage));
    clearDetected = menu->addAction(text(WindowTexts::clearDetected));
    connect(clearPage, &QAction::triggered, this, [this] { model.clearCurrentPage(); });
    connect(clearDetected, &QAction::triggered, this, [this] { model.clearDetected(); });
    clear->setMenu(menu);
}

void ControlsBar::setTipsAndKeys() {
    style->setToolTip(text(WindowTexts::styleTip));
    find->setToolTip(text(WindowTexts::findTip));
    autoDetect->setToolTip(text(WindowTexts::autoDetectTip));
    remove->setToolTip(text(WindowTexts::removeTip));
    clear->setToolTip(text(WindowTexts::clearTip));
    reveal->setToolTip(text(WindowTexts::revealTip));
    exportFile->setToolTip(text(WindowTexts::exportTip));
    find->setShortcut(Qt::CTRL | Qt::Key_F);
    autoDetect->setShortcut(Qt::CTRL | Qt::Key_D);
    exportFile->setShortcut(Qt::CTRL | Qt::Key_E);
}

void ControlsBar::refresh(const WindowState& state) {
    using Operation = RedactModel::Operation;
    status->setStatus(state.status);
    withoutDocument->setVisible(!state.hasDocument);
    withDocument->setVisible(state.hasDocument);
    const auto tool = std::ranges::find(allRedactionStyles, model.tool());
    style->setChosen(static_cast<int>(tool - allRedactionStyles.begin()));
    const QString scanning = text(WindowTexts::scanning);
    find->setEnabled(state.canSearch);
    find->setBusy(state.running == Operation::find ? scanning : QString());
    autoDetect->setEnabled(state.canSearch);
    autoDetect->setBusy(state.running == Operation::autoDetect ? scanning : QString());
    showCount(state);
    remove->setEnabled(state.canDelete);
    clear->setEnabled(state.canClear);
    clearPage->setEnabled(state.canClearPage);
    clearDetected->setEnabled(state.canClearDetected);
    reveal->setVisible(state.canReveal);
    exportFile->setEnabled(state.canExport);
    fit();
}

void ControlsBar::showCount(const WindowState& state) {
    shownCount = state.redactionCount;
    count->setVisible(shownCount > 0);
    count->setAccessibleName(spokenCount(shownCount));
    count->setToolTip(spokenCount(shownCount));
}

void ControlsBar::fit() {
    if (!withDocument->isVisibleTo(this)) {
        return;
    }
    int step = allTexts;
    while (step < tight && neededWidth(step) > width() - 2 * inset) {
        ++step;
    }
    shrink(step);
}

void ControlsBar::shrink(int step) {
    style->setTexts(styleTexts(step));
    clear->setCompact(step >= clearIcon);
    count->setText(countText(step));
    find->setCompact(step >= searchIcons);
    autoDetect->setCompact(step >= searchIcons);
    style->setTight(step >= tight);
    for (Button* const button : {find, autoDetect, reveal, exportFile}) {
        button->setTight(step >= tight);
    }
}

QString ControlsBar::countText(int step) const {
    return step >= countNumber ? QString::number(shownCount) : spokenCount(shownCount);
}

int ControlsBar::neededWidth(int step) const {
    const bool isTight = step >= tight;
    const auto shown = [](const QWidget* item, int width) {
        return item->isVisibleTo(item->parentWidget()) ? width + itemGap : 0;
    };
    const auto button = [&](const Button* item, bool isCompact) {
        return shown(item, item->width(isCompact, isTight));
    };
    return style->width(styleTexts(step), isTight) + button(find, step >= searchIcons) +
           button(autoDetect, step >= searchIcons) +
           shown(count, count->fontMetrics().horizontalAdvance(countText(step))) +
           button(remove, true) + button(clear, step >= clearIcon) + button(reveal, false) +
           button(exportFile, false) + itemGap; // before the space in the middle
}

void ControlsBar::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    fit();
}

bool ControlsBar::event(QEvent* event) {
    const bool handled = QWidget::event(event);
    if (event->type() == QEvent::FontChange) {
        fit();
    }
    return handled;
}

} // namespace murkwell
