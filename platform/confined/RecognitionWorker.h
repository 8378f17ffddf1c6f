// The worker that reads text and finds faces. It loads for a while, so it serves page after page of
// one document; the next document gets a new one.
#pragma once

#include "platform/confined/Workers.h"

#include <chrono>
#include <cstddef>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace murkwell {

class RecognitionWorker {
public:
    explicit RecognitionWorker(Workers& used) : workers(used) {}

    struct Answer {
        std::int32_t index;
        std::vector<std::byte> bytes;
    };

    // Sends the picture, if there is one, and the request. One after the other, on any thread that
    // outlives the document. None when it failed twice, took too long or was cancelled.
    [[nodiscard]] std::optional<Answer> ask(const Message& request, const Bitmap* picture);

    // What is asked now and later fails at once: nobody waits for it any more. Any thread.
    void cancel();

private:
    // The one for this document, started when need be; null when there is none to be had.
    [[nodiscard]] std::shared_ptr<WorkerProcess> current();
    [[nodiscard]] std::optional<Answer> converse(WorkerProcess& used, const Message& request,
                                                 const Bitmap* picture);
    void drop();

    Workers& workers;
    std::mutex asking;
    std::mutex mutex; // of what follows
    std::shared_ptr<WorkerProcess> worker;
    unsigned document = 0; // that it is for
    bool isCancelled = false;
};

} // namespace murkwell
