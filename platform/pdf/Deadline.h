// Calls off work that takes too long.
#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <pthread.h>
#include <thread>
#include <time.h>

namespace murkwell {

// Watches the thread that makes it. When that thread has used the given processor time and the
// deadline is still alive, `onExpiry` is called once, on a thread of its own. Processor time,
// because a page is not to be lost to whatever else keeps the machine busy. The destructor waits
// for a call that is under way.
class Deadline {
public:
    using Duration = std::chrono::nanoseconds;

    Deadline(Duration processorTime, std::function<void()> onExpiry)
        : thread([this, end = usedTime(::pthread_self()) + processorTime,
                  watched = ::pthread_self(),
                  call = std::move(onExpiry)](const std::stop_token& stopped) {
              if (waitUntil(watched, end, stopped)) {
                  call();
              }
          }) {}

private:
    static Duration usedTime(pthread_t watched) {
        clockid_t clock{};
        timespec used{};
        ::pthread_getcpuclockid(watched, &clock);
        ::clock_gettime(clock, &used);
        return std::chrono::seconds(used.tv_sec) + Duration(used.tv_nsec);
    }

    // False when stopped first.
    bool waitUntil(pthread_t watched, Duration end, const std::stop_token& stopped) {
        std::unique_lock lock(mutex);
        for (Duration used = usedTime(watched); used < end; used = usedTime(watched)) {
            // Not sooner than this: a thread cannot use more time than passes.
            condition.wait_for(lock, stopped, end - used, [] { return false; });
            if (stopped.stop_requested()) {
                return false;
            }
        }
        return true;
    }

    std::mutex mutex;
    std::condition_variable_any condition;
    std::jthread thread; // last: it uses the others
};

} // namespace murkwell
