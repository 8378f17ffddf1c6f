#include "platform/pdf/Deadline.h"

#include <atomic>
#include <gtest/gtest.h>

namespace murkwell {
namespace {

using namespace std::chrono_literals;

TEST(Deadline, ExpiresOnceWhileTheThreadWorks) {
    std::atomic<int> calls{0};
    {
        const Deadline deadline(2ms, [&] { ++calls; });
        while (calls == 0) {
        }
    }
    EXPECT_EQ(calls, 1);
}

TEST(Deadline, WaitingIsNotWork) {
    std::atomic<bool> expired{false};
    const Deadline deadline(20ms, [&] { expired = true; });
    std::this_thread::sleep_for(60ms);
    EXPECT_FALSE(expired);
}

TEST(Deadline, IsSilentWhenTheWorkIsDoneBefore) {
    std::atomic<bool> expired{false};
    {
        const Deadline deadline(24h, [&] { expired = true; });
    }
    EXPECT_FALSE(expired);
}

} // namespace
} // namespace murkwell
