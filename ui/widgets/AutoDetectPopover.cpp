#include "ui/widgets/AutoDetectPopover.h"

#include "ui/WindowTexts.h"
#include "ui/widgets/LinkButton.h"
#include "ui/widgets/PillButton.h"
#include "ui/widgets/ScopeRow.h"
#include "ui/widgets/Text.h"
#include "ui/widgets/ToggleSwitch.h"

#include <QHBoxLayout>
#include <QLabel>

namespace murkwell {

AutoDetectPopover::AutoDetectPopover(RedactModel& searched, QWidget* opener, QWidget* owner)
    : Popover(text(WindowTexts::autoDetect), opener, owner), model(searched),
      scope(new ScopeRow(searched)), action(new PillButton(text(WindowTexts::detectAndRedact))) {
    auto* const explanation = new QLabel(text(WindowTexts::autoDetectText));
    explanation->setWordWrap(true);
    explanation->setForegroundRole(QPalette::PlaceholderText);
    column()->addLayout(headingRow());
    column()->addWidget(explanation);
    addWarning();
    addKinds();
    column()->addWidget(scope);
    column()->addWidget(action);
    action->setToolTip(text(WindowTexts::autoDetectTip));
    connect(action, &QPushButton::clicked, this, [this] {
        model.autoDetect();
        dismiss();
    });
    setFirstFocus(kinds.begin()->second);
}

QHBoxLayout* AutoDetectPopover::headingRow() {
    auto* const heading = new QLabel(text(WindowTexts::autoDetect));
    heading->setFont(headline(font()));
    auto* const all = new LinkButton(text(WindowTexts::allKinds));
    auto* const none = new LinkButton(text(WindowTexts::noKinds));
    all->setToolTip(text(WindowTexts::allKindsTip));
    none->setToolTip(text(WindowTexts::noKindsTip));
    connect(all, &QPushButton::clicked, this,
            [this] { model.detectKinds = PIIKinds(allPIIKinds.begin(), allPIIKinds.end()); });
    connect(none, &QPushButton::clicked, this, [this] { model.detectKinds = PIIKinds(); });
    auto* const dot = new QLabel(QStringLiteral("·"));
    dot->setForegroundRole(QPalette::PlaceholderText);
    auto* const row = new QHBoxLayout;
    row->setSpacing(4);
    row->addWidget(heading);
    row->addStretch(1);
    row->addWidget(all);
    row->addWidget(dot);
    row->addWidget(none);
    return row;
}

void AutoDetectPopover::addKinds() {
    auto* const rows = new QVBoxLayout;
    rows->setSpacing(8);
    for (const PIIKind kind : allPIIKinds) {
        auto* const row = new ToggleSwitch(toQString(symbolName(kind)), text(label(kind)));
        row->setToolTip(text(label(kind)));
        connect(row, &QCheckBox::clicked, this,
                [this, kind](bool isChosen) { choose(kind, isChosen); });
        kinds.emplace(kind, row);
        rows->addWidget(row);
    }
    column()->addLayout(rows);
}

void AutoDetectPopover::choose(PIIKind kind, bool isChosen) {
    PIIKinds chosen = model.detectKinds();
    if (isChosen) {
        chosen.insert(kind);
    } else {
        chosen.erase(kind);
    }
    model.detectKinds = std::move(chosen);
}

void AutoDetectPopover::refresh(const WindowState& state) {
    for (const auto& [kind, row] : kinds) {
        row->setChecked(model.detectKinds().contains(kind));
    }
    setWarning(state.missingForDetect);
    scope->setVisible(state.hasManyPages);
    scope->refresh();
    action->setEnabled(state.canDetect);
}

} // namespace murkwell
