#include "platform/qt/ExecutorQt.h"

#include <QApplication>
#include <QDialog>
#include <QEventLoop>

#include <gmock/gmock.h>

#include <sys/resource.h>

#include <future>
#include <memory>
#include <numeric>
#include <thread>
#include <utility>
#include <vector>

namespace murkwell {
namespace {

// Of the calling thread.
int niceness() {
    return ::getpriority(PRIO_PROCESS, 0);
}

TEST(ExecutorQt, BackgroundJobsRunInOrderOnOneOtherThread) {
    ExecutorQt executor;
    std::vector<int> order;
    std::vector<std::thread::id> threads;
    QEventLoop loop;
    for (int i = 0; i < 20; ++i) {
        EXPECT_TRUE(executor.background([&, i] {
            order.push_back(i);
            threads.push_back(std::this_thread::get_id());
        }));
    }
    EXPECT_TRUE(executor.background([&] { executor.onMain([&] { loop.quit(); }); }));
    loop.exec();
    std::vector<int> expected(20);
    std::iota(expected.begin(), expected.end(), 0);
    EXPECT_EQ(order, expected);
    EXPECT_THAT(threads, testing::Each(threads.front()));
    EXPECT_NE(threads.front(), std::this_thread::get_id());
}

TEST(ExecutorQt, AJobThatThrowsEndsAlone) {
    ExecutorQt executor;
    EXPECT_TRUE(executor.background([] { throw std::bad_alloc(); }));
    std::promise<void> next;
    EXPECT_TRUE(executor.background([&] { next.set_value(); }));
    next.get_future().wait();
}

TEST(ExecutorQt, BackgroundAndItsThreadsGiveWayToTheMainThread) {
    constexpr int least = 19;
    const int own = niceness();
    if (own == least) {
        GTEST_SKIP() << "already at the least priority there is";
    }
    ExecutorQt executor;
    std::promise<std::pair<int, int>> measured;
    EXPECT_TRUE(executor.background([&] {
        int started = 0;
        std::thread([&] { started = niceness(); }).join();
        measured.set_value({niceness(), started});
    }));
    const auto [background, started] = measured.get_future().get();
    EXPECT_GT(background, own);
    EXPECT_EQ(started, background);
    EXPECT_EQ(niceness(), own);
}

TEST(ExecutorQt, ResultsArriveWhileAModalPanelIsUp) {
    ExecutorQt executor;
    QDialog panel;
    std::thread::id thread;
    EXPECT_TRUE(executor.background([&] {
        executor.onMain([&] {
            thread = std::this_thread::get_id();
            panel.accept();
        });
    }));
    EXPECT_EQ(panel.exec(), QDialog::Accepted);
    EXPECT_EQ(thread, std::this_thread::get_id());
}

TEST(ExecutorQt, MainJobsAreNeverRunAtOnce) {
    ExecutorQt executor;
    bool ran = false;
    executor.onMain([&] { ran = true; });
    EXPECT_FALSE(ran);
    QCoreApplication::processEvents();
    EXPECT_TRUE(ran);
}

TEST(ExecutorQt, NoMainJobRunsAfterItsEnd) {
    auto executor = std::make_unique<ExecutorQt>();
    bool ran = false;
    std::promise<void> posted;
    EXPECT_TRUE(executor->background([&] {
        executor->onMain([&] { ran = true; });
        posted.set_value();
    }));
    posted.get_future().wait();
    executor.reset();
    QCoreApplication::processEvents();
    EXPECT_FALSE(ran);
}

TEST(ExecutorQt, ItsEndAwaitsTheRunningJob) {
    auto executor = std::make_unique<ExecutorQt>();
    std::promise<void> begun;
    std::promise<void> mayEnd;
    bool ended = false;
    EXPECT_TRUE(executor->background([&] {
        begun.set_value();
        mayEnd.get_future().wait();
        ended = true;
    }));
    begun.get_future().wait();
    std::thread release([&] { mayEnd.set_value(); });
    executor.reset();
    release.join();
    EXPECT_TRUE(ended);
}

} // namespace
} // namespace murkwell
