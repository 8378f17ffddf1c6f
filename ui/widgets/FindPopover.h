// What to search for, and how.
#pragma once

#include "ui/WindowState.h"
#include "ui/widgets/Popover.h"

namespace murkwell {

class PillButton;
class ScopeRow;
class TextField;
class ToggleSwitch;

class FindPopover final : public Popover {
    Q_OBJECT

public:
    FindPopover(RedactModel& model, QWidget* opener, QWidget* owner);

    void refresh(const WindowState& state);

private:
    void runFind();
    void updateAction();

    RedactModel& model;
    TextField* findQuery; // kept while the popover is closed, as is the switch
    ToggleSwitch* fuzzyFind;
    ScopeRow* scope;
    PillButton* action;
};

} // namespace murkwell
