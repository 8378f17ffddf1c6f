// The main of tests that need Qt: an application without a display, away from the user's session
// and settings.

#include "tests/support/TemporaryFolder.h"

#include <QApplication>

#include <gtest/gtest.h>

int main(int argc, char** argv) {
    const murkwell::TemporaryFolder home;
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("DBUS_SESSION_BUS_ADDRESS", "disabled:");
    qputenv("XDG_CONFIG_HOME", home.path.c_str());
    testing::InitGoogleTest(&argc, argv);
    const QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
