// How the benchmarks measure: a thing and its reference take turns in one run, and what is printed
// is the ratio of their best times. Other load on the machine hits both alike.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <limits>
#include <sched.h>
#include <string>

namespace murkwell::bench {

inline double seconds(const std::function<void()>& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// Keeps the compiler from dropping what nobody reads.
template <typename T>
void keep(T& value) {
    asm volatile("" : : "g"(&value) : "memory");
}

struct Pair {
    double measured = std::numeric_limits<double>::infinity();
    double reference = std::numeric_limits<double>::infinity();
};

// Best times, in seconds, of so many turns.
inline Pair takeTurns(int turns, const std::function<void()>& measured,
                      const std::function<void()>& reference) {
    Pair best;
    for (int i = 0; i < turns; ++i) {
        best.reference = std::min(best.reference, seconds(reference));
        best.measured = std::min(best.measured, seconds(measured));
    }
    return best;
}

inline void printRatio(const std::string& what, double ratio, double limit) {
    std::printf("%-58s %6.3f  (at most %.2f)%s\n", what.c_str(), ratio, limit,
                ratio <= limit ? "" : "  EXCEEDED");
    std::fflush(stdout);
}

// Keeps this process on one processor while it lives.
class OneProcessor {
public:
    OneProcessor() {
        ::sched_getaffinity(0, sizeof before, &before);
        cpu_set_t one;
        CPU_ZERO(&one);
        CPU_SET(::sched_getcpu(), &one);
        ::sched_setaffinity(0, sizeof one, &one);
    }
    ~OneProcessor() { ::sched_setaffinity(0, sizeof before, &before); }
    OneProcessor(const OneProcessor&) = delete;
    OneProcessor& operator=(const OneProcessor&) = delete;

private:
    cpu_set_t before{};
};

} // namespace murkwell::bench
