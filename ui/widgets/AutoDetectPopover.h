// Which kinds of sensitive content to search for.
#pragma once

#include "detect/PIIKind.h"
#include "ui/WindowState.h"
#include "ui/widgets/Popover.h"

#include <map>

class QLabel;
class QHBoxLayout;

namespace murkwell {

class PillButton;
class ScopeRow;
class ToggleSwitch;

class AutoDetectPopover final : public Popover {
    Q_OBJECT

public:
    AutoDetectPopover(RedactModel& model, QWidget* opener, QWidget* owner);

    void refresh(const WindowState& state);

private:
    [[nodiscard]] QHBoxLayout* headingRow();
    void addKinds();
    void choose(PIIKind kind, bool isChosen);

    RedactModel& model;
    std::map<PIIKind, ToggleSwitch*> kinds;
    ScopeRow* scope;
    PillButton* action;
};

} // namespace murkwell
