// The workers that stand behind the engines of one program.
#pragma once

#include "platform/confinement/WorkerProcess.h"

#include <atomic>
#include <chrono>
#include <filesystem>
#include <memory>

namespace murkwell {

// Any thread.
class Workers {
public:
    // Times are multiplied by the factor; tests are in a hurry.
    explicit Workers(std::filesystem::path programs = installedWorkers(), double haste = 1)
        : folder(std::move(programs)), timeFactor(haste) {}

    // Null when it is missing or no process can be had. Ends with the calling thread.
    [[nodiscard]] std::unique_ptr<WorkerProcess> start(const char* name) const;

    // From now on it may use so much processor time.
    void allow(WorkerProcess& worker, std::chrono::nanoseconds processorTime) const;

    // The worker's answer to a request. None when it has failed.
    [[nodiscard]] std::optional<Message> ask(WorkerProcess& worker, const Message& request);

    // What shall see one document only compares this to what it was.
    void beginDocument() { ++documentCount; }
    [[nodiscard]] unsigned documents() const { return documentCount; }

    // Which walls any worker so far had to do without (Walls.h).
    [[nodiscard]] int missingWalls() const { return missing; }

private:
    std::filesystem::path folder;
    double timeFactor;
    std::atomic<unsigned> documentCount{0};
    std::atomic<int> missing{0};
};

} // namespace murkwell
