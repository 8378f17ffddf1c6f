// The program these are in is started without a session bus.

#include "platform/qt/DesktopSettings.h"

#include <QDBusConnection>
#include <QGuiApplication>
#include <QPalette>

#include <utility>

#include <gtest/gtest.h>

namespace murkwell {
namespace {

TEST(NoSessionBus, LooksAsThePlatformDoes) {
    ASSERT_FALSE(QDBusConnection::sessionBus().isConnected());
    const QPalette before = QGuiApplication::palette();
    for (const auto& [window, isDark] : {std::pair(Qt::black, true), {Qt::white, false}}) {
        QGuiApplication::setPalette(QPalette(window));
        DesktopSettings settings;
        settings.waitBriefly();
        EXPECT_EQ(settings.prefersDark(), isDark);
        EXPECT_EQ(settings.accent(), std::nullopt);
    }
    QGuiApplication::setPalette(before);
}

} // namespace
} // namespace murkwell
