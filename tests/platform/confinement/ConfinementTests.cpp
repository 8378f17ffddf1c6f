#include "platform/confinement/Sanitized.h"
#include "platform/confinement/WorkerProcess.h"
#include "tests/platform/confinement/Attempts.h"

#include <cstring>
#include <gtest/gtest.h>
#include <unistd.h>

namespace murkwell {
namespace {

enum class User { root, ordinary };

const char* name(User user) {
    return user == User::root ? "root" : "ordinary";
}

std::vector<User> users() {
    return ::geteuid() == 0 ? std::vector{User::root, User::ordinary} : std::vector{User::root};
}

std::unique_ptr<WorkerProcess> startProbe(const char* profile, User user, const char* walls) {
    return WorkerProcess::start(MURKWELL_PROBE_WORKER, {profile, name(user), walls});
}

// The error that the attempt met; none when it ended the worker.
std::optional<int> outcome(WorkerProcess& worker, std::size_t attempt) {
    Message request;
    request.kind = Message::Kind::page;
    request.index = static_cast<int>(attempt);
    worker.allow(std::chrono::seconds(2));
    const auto answer = worker.send(request) ? worker.answer() : std::nullopt;
    return answer ? std::optional(answer->index) : std::nullopt;
}

TEST(Confinement, NothingThatIsTriedFromInsideSucceeds) {
    if (isSanitized) {
        GTEST_SKIP() << "without the filter of system calls";
    }
    ASSERT_GE(attempts().size(), 50U);
    for (const char* const profile : {"pdf", "image", "recognition"}) {
        for (const User user : users()) {
            std::unique_ptr<WorkerProcess> worker;
            for (std::size_t i = 0; i < attempts().size(); ++i) {
                if (!worker) {
                    worker = startProbe(profile, user, "walls");
                    ASSERT_TRUE(worker);
                }
                const auto error = outcome(*worker, i);
                EXPECT_EQ(worker->missingWalls(), 0);
                EXPECT_NE(error, 0) << attempts()[i].name << ", " << profile << ", " << name(user);
                if (!error) {
                    EXPECT_TRUE(worker->hasCrashed()) << attempts()[i].name;
                    worker.reset();
                }
            }
        }
    }
}

TEST(Confinement, TheSameSucceedsWithoutWalls) {
    for (const User user : users()) {
        const bool isRoot = user == User::root && ::geteuid() == 0;
        for (std::size_t i = 0; i < attempts().size(); ++i) {
            const auto& attempt = attempts()[i];
            const auto worker = startProbe("pdf", user, "control");
            ASSERT_TRUE(worker);
            const auto error = outcome(*worker, i);
            if (attempt.without == Attempt::Succeeds::forAll ||
                (attempt.without == Attempt::Succeeds::forRoot && isRoot)) {
                EXPECT_EQ(error, 0) << attempt.name << ", " << name(user) << ": "
                                    << (error ? std::strerror(*error) : "died");
            }
        }
    }
}

} // namespace
} // namespace murkwell
