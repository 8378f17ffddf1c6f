// The leave to come to the front that the desktop gives to a program which the user has just
// started: a token on Wayland, an identifier on X11. Whoever was started passes it on to the
// instance that has the window.
#pragma once

#include <QString>
#include <QVariantMap>

class QWidget;

namespace murkwell {

struct ActivationToken {
    QString wayland;
    QString startupId;

    // As the desktop hands it to a process. To be read before Qt does, which removes it.
    [[nodiscard]] static ActivationToken fromEnvironment();

    // As it travels with the calls of org.freedesktop.Application.
    [[nodiscard]] static ActivationToken fromPlatformData(const QVariantMap& data);
    [[nodiscard]] QVariantMap platformData() const;
};

// Shows the window in front of the others, as far as the desktop lets it.
void bringToFront(QWidget& window, const ActivationToken& token);

} // namespace murkwell
