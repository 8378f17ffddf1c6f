// Runs background jobs on a thread of its own, and brings results back through Qt's event loop.
#pragma once

#include "model/Executor.h"

#include <QObject>

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

namespace murkwell {

// To be made and to go on the main thread.
class ExecutorQt final : public Executor {
public:
    ExecutorQt() = default;
    // Waits for the job that runs. Jobs that have not begun are dropped, on either thread.
    ~ExecutorQt() override;
    ExecutorQt(const ExecutorQt&) = delete;
    ExecutorQt& operator=(const ExecutorQt&) = delete;

    // One job at a time, in the order given, on a thread that leaves the processor to the main one
    // whenever that wants it. So do the threads that a job starts.
    [[nodiscard]] bool background(std::function<void()> job) override;
    void onMain(std::function<void()> job) override;

private:
    void work();

    QObject mainThread; // receives the jobs of onMain(); with it go those that wait
    std::mutex mutex;
    std::condition_variable changed;
    std::deque<std::function<void()>> waiting; // the first one may be running
    bool isEnding = false;
    std::thread worker; // begins with the first job
};

} // namespace murkwell
