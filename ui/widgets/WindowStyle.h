// The style under the controls that the program does not paint by itself: menus, dialogs, tooltips.
#pragma once

#include <QProxyStyle>

namespace murkwell {

class WindowStyle final : public QProxyStyle {
    Q_OBJECT

public:
    WindowStyle();

    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
    [[nodiscard]] int pixelMetric(PixelMetric metric, const QStyleOption* option,
                                  const QWidget* widget) const override;
    [[nodiscard]] int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                                QStyleHintReturn* returned) const override;
};

} // namespace murkwell
