// An executor whose jobs run when a test says so, all on the test's own thread.
#pragma once

#include "model/Executor.h"

#include <deque>
#include <utility>

namespace murkwell {

class ManualExecutor final : public Executor {
public:
    bool background(std::function<void()> job) override {
        backgroundJobs.push_back(std::move(job));
        return true;
    }
    void onMain(std::function<void()> job) override { mainJobs.push_back(std::move(job)); }

    void runBackground() { run(backgroundJobs); }
    void runMain() { run(mainJobs); }
    void runAll() {
        runBackground();
        runMain();
    }

    std::deque<std::function<void()>> backgroundJobs;
    std::deque<std::function<void()>> mainJobs;

private:
    static void run(std::deque<std::function<void()>>& jobs) {
        while (!jobs.empty()) {
            const auto job = std::move(jobs.front());
            jobs.pop_front();
            job();
        }
    }
};

} // namespace murkwell
