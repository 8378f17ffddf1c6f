#include "core/ParallelFor.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <sched.h>
#include <thread>
#include <vector>

namespace murkwell {

std::size_t availableProcessors() {
    cpu_set_t mask;
    CPU_ZERO(&mask);
    if (::sched_getaffinity(0, sizeof mask, &mask) == 0) {
        return static_cast<std::size_t>(std::max(1, CPU_COUNT(&mask)));
    }
    return std::max(1U, std::thread::hardware_concurrency());
}

bool parallelFor(std::size_t count, const std::function<void(std::size_t)>& job,
                 std::size_t threads) {
    std::atomic<std::size_t> next{0};
    std::atomic<bool> allDone{true};
    const auto work = [&] {
        for (std::size_t i = next.fetch_add(1); i < count; i = next.fetch_add(1)) {
            try {
                job(i);
            } catch (...) {
                allDone = false;
            }
        }
    };
    std::vector<std::jthread> workers;
    const std::size_t wanted = std::min(count, threads);
    for (std::size_t i = 1; i < wanted; ++i) {
        try {
            workers.emplace_back(work);
        } catch (const std::exception&) {
            break; // No more threads to be had: those that run do all the jobs.
        }
    }
    work();
    workers.clear(); // waits for them
    return allDone;
}

} // namespace murkwell
