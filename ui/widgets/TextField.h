// A line of text to be typed, in the look of the other controls.
#pragma once

#include <QLineEdit>

namespace murkwell {

class TextField final : public QLineEdit {
    Q_OBJECT

public:
    // The placeholder is its name for screen readers, too.
    explicit TextField(const QString& placeholder, QWidget* parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace murkwell
