#include "ui/widgets/ModelRefresh.h"

#include "tests/support/ModelUnderTest.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QSignalSpy>

#include <gtest/gtest.h>

namespace murkwell {
namespace {

struct ModelRefreshTest : testing::Test {
    ModelUnderTest under;
    RedactModel& model = *under.model;
    ModelRefresh refresh{model};
    QSignalSpy refreshes{&refresh, &ModelRefresh::refreshed};
};

TEST_F(ModelRefreshTest, ManyNotificationsAreOneRefresh) {
    under.openPdf();
    model.addRedaction({0.1, 0.1, 0.2, 0.2});
    EXPECT_EQ(refreshes.count(), 0);
    QCoreApplication::processEvents();
    EXPECT_EQ(refreshes.count(), 1);
    QCoreApplication::processEvents();
    EXPECT_EQ(refreshes.count(), 1);
}

TEST_F(ModelRefreshTest, RefreshSeesTheStoredState) {
    bool isOpen = false;
    QObject::connect(&refresh, &ModelRefresh::refreshed,
                     [&] { isOpen = model.document().has_value(); });
    under.openPdf();
    QCoreApplication::processEvents();
    EXPECT_TRUE(isOpen);
}

TEST_F(ModelRefreshTest, ChangeMadeByARefreshIsRefreshedInTurn) {
    QObject::connect(&refresh, &ModelRefresh::refreshed, [&] {
        if (!model.applyToAllPages()) {
            model.applyToAllPages = true;
        }
    });
    model.selectedID = std::nullopt;
    QCoreApplication::processEvents();
    QCoreApplication::processEvents();
    EXPECT_EQ(refreshes.count(), 2);
}

TEST_F(ModelRefreshTest, ModalLoopsRefreshToo) {
    under.openPdf();
    QEventLoop panel;
    QObject::connect(&refresh, &ModelRefresh::refreshed, &panel, &QEventLoop::quit);
    panel.exec(); // never ends without a refresh
    EXPECT_EQ(refreshes.count(), 1);
}

TEST_F(ModelRefreshTest, NothingComesAfterItsEnd) {
    auto shortLived = std::make_unique<ModelRefresh>(model);
    bool came = false;
    QObject::connect(shortLived.get(), &ModelRefresh::refreshed, [&] { came = true; });
    under.openPdf();
    shortLived.reset();
    under.openPicture();
    QCoreApplication::processEvents();
    EXPECT_FALSE(came);
}

} // namespace
} // namespace murkwell
