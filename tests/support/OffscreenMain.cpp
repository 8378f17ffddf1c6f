// The main of tests that need Qt: an application without a display, and none of the user's
// settings.

#include <QApplication>

#include <gtest/gtest.h>

#include <cstdlib>

int main(int argc, char** argv) {
    // NOLINTNEXTLINE(concurrency-mt-unsafe): there is no other thread yet.
    ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
    testing::InitGoogleTest(&argc, argv);
    const QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
