// Port: runs work away from the main thread and brings results back to it.
#pragma once

#include <functional>

namespace murkwell {

class Executor {
public:
    virtual ~Executor() = default;

    // Runs the job on a thread that is not the main one, soon. False when it cannot be run. Called
    // on the main thread. What the job throws ends the job and nothing else, and nobody is told: a
    // job that is waited for catches it.
    [[nodiscard]] virtual bool background(std::function<void()> job) = 0;

    // Runs the job on the main thread, from its event loop, which may be that of a modal panel.
    // May be called from any thread, and from a background job.
    virtual void onMain(std::function<void()> job) = 0;
};

} // namespace murkwell
