#include "platform/qt/ExecutorQt.h"

#include <QMetaObject>

#include <unistd.h>

#include <exception>
#include <utility>

namespace murkwell {
namespace {

// Linux counts niceness per thread and hands it down to the threads that one starts, so the
// recognisers' pools get it too. Beside a busy main thread about a tenth of a processor is left.
void giveWayToTheMainThread() {
    constexpr int nicer = 10;
    // Where it is refused, the search merely competes.
    [[maybe_unused]] const int niceness = ::nice(nicer);
}

} // namespace

ExecutorQt::~ExecutorQt() {
    {
        const std::lock_guard lock(mutex);
        isEnding = true;
    }
    changed.notify_one();
    if (worker.joinable()) {
        worker.join();
    }
}

bool ExecutorQt::background(std::function<void()> job) {
    try {
        if (!worker.joinable()) {
            worker = std::thread([this] { work(); });
        }
        const std::lock_guard lock(mutex);
        waiting.push_back(std::move(job));
    } catch (const std::exception&) {
        return false; // no thread, or no memory
    }
    changed.notify_one();
    return true;
}

void ExecutorQt::onMain(std::function<void()> job) {
    QMetaObject::invokeMethod(&mainThread, std::move(job), Qt::QueuedConnection);
}

void ExecutorQt::work() {
    giveWayToTheMainThread();
    std::unique_lock lock(mutex);
    for (;;) {
        changed.wait(lock, [this] { return isEnding || !waiting.empty(); });
        if (isEnding) {
            return;
        }
        auto job = std::move(waiting.front());
        lock.unlock();
        try {
            job();
        } catch (...) {
            // It has failed, and that is the end of the job alone.
        }
        job = nullptr; // what it holds goes before it counts as done
        lock.lock();
        waiting.pop_front();
    }
}

} // namespace murkwell
