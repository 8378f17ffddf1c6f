// How long the decoding of one picture may take.
#pragma once

#include <chrono>
#include <time.h>

namespace murkwell {

// Over when so much time has passed and this process has used as much of the processors. A picture
// is thus not lost to other programs that keep the machine busy, nor to other work of this one.
class TimeLimit {
public:
    using Duration = std::chrono::nanoseconds;

    explicit TimeLimit(Duration allowed)
        : end(std::chrono::steady_clock::now() + allowed),
          processorTimeAtEnd(processorTime() + allowed) {}

    [[nodiscard]] bool isOver() const {
        return std::chrono::steady_clock::now() > end && processorTime() > processorTimeAtEnd;
    }

private:
    // Of all threads: those of libvips are not known one by one.
    static Duration processorTime() {
        timespec used{};
        ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &used);
        return std::chrono::seconds(used.tv_sec) + Duration(used.tv_nsec);
    }

    std::chrono::steady_clock::time_point end;
    Duration processorTimeAtEnd;
};

} // namespace murkwell
