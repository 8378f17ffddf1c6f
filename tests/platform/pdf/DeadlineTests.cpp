#include "platform/pdf/Deadline.h"

#include <future>
#include <gtest/gtest.h>

namespace murkwell {
namespace {

using namespace std::chrono_literals;

TEST(Deadline, ExpiresOnceWhenTheTimeHasPassed) {
    std::promise<void> expired;
    const Deadline deadline(1ms, [&] { expired.set_value(); });
    EXPECT_EQ(expired.get_future().wait_for(60s), std::future_status::ready);
}

TEST(Deadline, IsSilentWhenTheWorkIsDoneBefore) {
    bool expired = false;
    {
        const Deadline deadline(24h, [&] { expired = true; });
    }
    EXPECT_FALSE(expired);
}

} // namespace
} // namespace murkwell
