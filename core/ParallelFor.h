// Runs independent jobs on all processors this process may use.
#pragma once

#include <cstddef>
#include <functional>

namespace murkwell {

// Processors in this process's affinity mask, at least 1.
[[nodiscard]] std::size_t availableProcessors();

// Calls job(0) ... job(count - 1), each once, on so many threads, the calling one among them;
// returns when all are over. Low indices start first. The job may run on several threads at once.
// One that throws, for want of memory say, has failed: the others run all the same, and the answer
// is false.
[[nodiscard]] bool parallelFor(std::size_t count, const std::function<void(std::size_t)>& job,
                               std::size_t threads = availableProcessors());

} // namespace murkwell
