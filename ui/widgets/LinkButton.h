// A button that looks like a link.
#pragma once

#include <QPushButton>

namespace murkwell {

class LinkButton final : public QPushButton {
    Q_OBJECT

public:
    explicit LinkButton(const QString& label, QWidget* parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString label;
};

} // namespace murkwell
