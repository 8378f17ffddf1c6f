#include "platform/confined/Workers.h"

namespace murkwell {

std::unique_ptr<WorkerProcess> Workers::start(const char* name) const {
    // Programs start and libraries load in a second; the machine may be busy.
    constexpr std::chrono::seconds timeToStart(20);
    auto worker = WorkerProcess::start(folder / name);
    if (worker) {
        allow(*worker, timeToStart);
    }
    return worker;
}

void Workers::allow(WorkerProcess& worker, std::chrono::nanoseconds processorTime) const {
    worker.allow(std::chrono::ceil<WorkerProcess::Duration>(processorTime * timeFactor));
}

std::optional<Message> Workers::ask(WorkerProcess& worker, const Message& request) {
    auto answer = worker.send(request) ? worker.answer() : std::nullopt;
    missing |= worker.missingWalls().value_or(0);
    return answer;
}

} // namespace murkwell
