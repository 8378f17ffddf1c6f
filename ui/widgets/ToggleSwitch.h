// A row that is on or off: an optional icon, a label, an optional caption below, and a switch at
// the right end. The whole row takes clicks.
#pragma once

#include <QCheckBox>

namespace murkwell {

class ToggleSwitch final : public QCheckBox {
    Q_OBJECT

public:
    ToggleSwitch(const QString& iconName, const QString& label, const QString& caption = {},
                 QWidget* parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;
    // The label in one line; the caption wraps.
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }
    [[nodiscard]] bool hasHeightForWidth() const override { return true; }
    [[nodiscard]] int heightForWidth(int width) const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    [[nodiscard]] bool hitButton(const QPoint& position) const override;

private:
    [[nodiscard]] int textLeft() const;
    [[nodiscard]] int captionHeight(int width) const;
    void paintTexts(QPainter& painter) const;
    void paintSwitch(QPainter& painter) const;

    QString iconName;
    QString label;
    QString captionText;
};

} // namespace murkwell
