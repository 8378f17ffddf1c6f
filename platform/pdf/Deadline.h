// Calls off work that takes too long.
#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

namespace murkwell {

// Calls `onExpiry` once, on a thread of its own, when it is still alive after the time has passed.
// The destructor waits for a call that is under way.
class Deadline {
public:
    Deadline(std::chrono::milliseconds time, std::function<void()> onExpiry)
        : thread([this, time, onExpiry = std::move(onExpiry)](const std::stop_token& stopped) {
              std::unique_lock lock(mutex);
              condition.wait_for(lock, stopped, time, [] { return false; });
              if (!stopped.stop_requested()) {
                  onExpiry();
              }
          }) {}

private:
    std::mutex mutex;
    std::condition_variable_any condition;
    std::jthread thread; // last: it uses the others
};

} // namespace murkwell
