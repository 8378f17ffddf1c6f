// One line of text. Where it does not fit it is shortened, and its tooltip has all of it.
#pragma once

#include <QLabel>

namespace murkwell {

class ElidedLabel final : public QLabel {
    Q_OBJECT

public:
    explicit ElidedLabel(Qt::TextElideMode mode, QWidget* parent = nullptr);

    [[nodiscard]] QSize minimumSizeHint() const override { return {0, sizeHint().height()}; }

protected:
    void paintEvent(QPaintEvent* event) override;
    bool event(QEvent* event) override;

private:
    [[nodiscard]] QString shown() const;

    Qt::TextElideMode mode;
};

} // namespace murkwell
