// Whether a search goes over this page or all pages; shown in both popovers.
#pragma once

#include <QWidget>

namespace murkwell {

class RedactModel;
class SegmentedControl;

class ScopeRow final : public QWidget {
    Q_OBJECT

public:
    explicit ScopeRow(RedactModel& model, QWidget* parent = nullptr);

    void refresh();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    RedactModel& model;
    SegmentedControl* scope;
};

} // namespace murkwell
