#include "ui/widgets/FindPopover.h"

#include "model/WhiteSpace.h"
#include "ui/WindowTexts.h"
#include "ui/widgets/PillButton.h"
#include "ui/widgets/ScopeRow.h"
#include "ui/widgets/Text.h"
#include "ui/widgets/TextField.h"
#include "ui/widgets/ToggleSwitch.h"

#include <QLabel>
#include <QVBoxLayout>

namespace murkwell {

FindPopover::FindPopover(RedactModel& searched, QWidget* opener, QWidget* owner)
    : Popover(text(WindowTexts::find), opener, owner), model(searched),
      findQuery(new TextField(text(WindowTexts::findPlaceholder))),
      fuzzyFind(new ToggleSwitch({}, text(WindowTexts::fuzzyMatch), text(WindowTexts::fuzzyText))),
      scope(new ScopeRow(searched)), action(new PillButton(text(WindowTexts::redactMatches))) {
    auto* const heading = new QLabel;
    heading->setFont(headline(font()));
    heading->setTextFormat(Qt::PlainText);
    heading->setText(text(WindowTexts::find));
    auto* const explanation = new QLabel(text(WindowTexts::findText));
    explanation->setWordWrap(true);
    explanation->setForegroundRole(QPalette::PlaceholderText);
    findQuery->setToolTip(text(WindowTexts::findText));
    findQuery->setAcceptDrops(false); // files dropped here are for the window
    connect(findQuery, &QLineEdit::textChanged, this, &FindPopover::updateAction);
    connect(findQuery, &QLineEdit::returnPressed, this, &FindPopover::runFind);
    connect(action, &QPushButton::clicked, this, &FindPopover::runFind);
    fuzzyFind->setToolTip(text(WindowTexts::fuzzyText));
    action->setToolTip(text(WindowTexts::findTip));
    column()->addWidget(heading);
    column()->addWidget(explanation);
    addWarning();
    for (QWidget* const row : {static_cast<QWidget*>(findQuery), static_cast<QWidget*>(fuzzyFind),
                               static_cast<QWidget*>(scope), static_cast<QWidget*>(action)}) {
        column()->addWidget(row);
    }
    setFirstFocus(findQuery);
}

void FindPopover::refresh(const WindowState& state) {
    setWarning(state.missingForFind);
    scope->setVisible(state.hasManyPages);
    scope->refresh();
    action->setEnabled(canRedactMatches(state, findQuery->text().toStdString()));
}

void FindPopover::updateAction() {
    action->setEnabled(canRedactMatches(WindowState(model), findQuery->text().toStdString()));
}

void FindPopover::runFind() {
    const std::string typed = findQuery->text().toStdString();
    const std::string_view query = withoutOuterWhiteSpace(typed);
    if (query.empty()) {
        return;
    }
    model.redactMatches(query, fuzzyFind->isChecked());
    dismiss();
}

} // namespace murkwell
