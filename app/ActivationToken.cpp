#include "app/ActivationToken.h"

#include <QWidget>

namespace murkwell {
namespace {

constexpr const char* tokenVariable = "XDG_ACTIVATION_TOKEN";
constexpr const char* startupVariable = "DESKTOP_STARTUP_ID";
constexpr QLatin1String tokenKey("activation-token");
constexpr QLatin1String startupKey("desktop-startup-id");

} // namespace

ActivationToken ActivationToken::fromEnvironment() {
    return {qEnvironmentVariable(tokenVariable), qEnvironmentVariable(startupVariable)};
}

ActivationToken ActivationToken::fromPlatformData(const QVariantMap& data) {
    return {data.value(tokenKey).toString(), data.value(startupKey).toString()};
}

QVariantMap ActivationToken::platformData() const {
    QVariantMap data;
    if (!wayland.isEmpty()) {
        data[tokenKey] = wayland;
    }
    if (!startupId.isEmpty()) {
        data[startupKey] = startupId;
    }
    return data;
}

void bringToFront(QWidget& window, const ActivationToken& token) {
    // Qt's Wayland plugin looks for the token there when a window asks to be activated. Its X11
    // plugin has no way to take an identifier once it runs; window managers then go by the time of
    // the user's last action in the window.
    if (!token.wayland.isEmpty()) {
        qputenv(tokenVariable, token.wayland.toUtf8());
    }
    window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
    window.show();
    window.raise();
    window.activateWindow();
    qunsetenv(tokenVariable);
}

} // namespace murkwell
