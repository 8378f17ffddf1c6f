#include "ui/widgets/ScopeRow.h"

#include "model/RedactModel.h"
#include "ui/WindowTexts.h"
#include "ui/widgets/SegmentedControl.h"
#include "ui/widgets/Text.h"
#include "ui/widgets/Theme.h"

#include <QBoxLayout>
#include <QLabel>
#include <QPainter>

namespace murkwell {
namespace {

constexpr int belowDivider = 13;

} // namespace

ScopeRow::ScopeRow(RedactModel& searched, QWidget* parent)
    : QWidget(parent), model(searched), scope(new SegmentedControl(text(WindowTexts::applyTo))) {
    scope->addSegment({}, text(WindowTexts::thisPage));
    scope->addSegment({}, text(WindowTexts::allPages));
    connect(scope, &SegmentedControl::chosen, this,
            [this](int index) { model.applyToAllPages = index == 1; });
    auto* const name = new QLabel(text(WindowTexts::applyTo));
    // Long languages put the name above its segments instead of cutting either.
    const int wanted = name->sizeHint().width() + scope->sizeHint().width() + 12;
    auto* const row =
        new QBoxLayout(wanted <= 256 ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom, this);
    row->setContentsMargins(0, belowDivider, 0, 0);
    row->setSpacing(8);
    row->addWidget(name);
    if (row->direction() == QBoxLayout::LeftToRight) {
        row->addStretch(1);
    }
    row->addWidget(scope);
}

void ScopeRow::refresh() {
    scope->setChosen(model.applyToAllPages() ? 1 : 0);
}

void ScopeRow::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(0, 0, width(), 1, Theme::of(*this).line);
}

} // namespace murkwell
