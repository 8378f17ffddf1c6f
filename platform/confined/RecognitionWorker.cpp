#include "platform/confined/RecognitionWorker.h"

#include <utility>

namespace murkwell {
namespace {

using namespace std::chrono_literals;

// Processor time for one page. The slowest that we know takes 40 seconds.
constexpr auto timeForPage = 240s;

} // namespace

std::shared_ptr<WorkerProcess> RecognitionWorker::current() {
    const std::lock_guard lock(mutex);
    if (isCancelled) {
        return nullptr;
    }
    if (const unsigned now = workers.documents(); !worker || document != now) {
        worker = workers.start("murkwell-recognition");
        document = now;
    }
    return worker;
}

std::optional<RecognitionWorker::Answer>
RecognitionWorker::converse(WorkerProcess& used, const Message& request, const Bitmap* picture) {
    workers.allow(used, timeForPage);
    if (picture != nullptr && !used.sendPicture(*picture)) {
        return std::nullopt;
    }
    const auto answer = workers.ask(used, request);
    auto bytes = answer ? used.takeBytes(*answer) : std::nullopt;
    return bytes ? std::optional(Answer{answer->index, *std::move(bytes)}) : std::nullopt;
}

std::optional<RecognitionWorker::Answer> RecognitionWorker::ask(const Message& request,
                                                                const Bitmap* picture) {
    const std::lock_guard lock(asking);
    constexpr int attempts =
        2; // whatever killed it may have meant another page, or another process
    for (int i = 0; i < attempts; ++i) {
        const auto used = current();
        if (!used) {
            break;
        }
        if (auto answer = converse(*used, request, picture)) {
            return answer;
        }
        const bool tookTooLong = used->isLate();
        drop();
        if (tookTooLong) {
            break;
        }
    }
    return std::nullopt;
}

void RecognitionWorker::drop() {
    const std::lock_guard lock(mutex);
    worker.reset();
}

void RecognitionWorker::cancel() {
    const std::lock_guard lock(mutex);
    isCancelled = true;
    if (worker) {
        worker->interrupt();
    }
}

} // namespace murkwell
