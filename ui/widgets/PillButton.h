// The primary action of a popover: a capsule over the full width.
#pragma once

#include <QPushButton>

namespace murkwell {

class PillButton final : public QPushButton {
    Q_OBJECT

public:
    explicit PillButton(const QString& label, QWidget* parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;

    // Of the capsule's fill.
    [[nodiscard]] static double opacity(bool enabled, bool pressed);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString label;
};

} // namespace murkwell
