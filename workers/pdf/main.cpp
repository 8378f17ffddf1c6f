// murkwell-pdf: draws the pages of a PDF behind walls. Only wiring.
#include "platform/confinement/WorkerLoop.h"
#include "platform/pdf/PageDrawerMuPdf.h"

#include <memory>
#include <optional>
#include <string>

namespace {

using namespace murkwell;
using Kind = Message::Kind;

class PdfWorker {
public:
    Message answer(WorkerLoop& loop, const Message& request) {
        switch (request.kind) {
        case Kind::open:
            return open(loop, request);
        case Kind::page:
            return draw(loop, request);
        default:
            return WorkerLoop::done(0);
        }
    }

private:
    Message open(const WorkerLoop& loop, const Message& request) {
        PageLimits limits{};
        limits.largestBlock = static_cast<std::size_t>(request.number);
        limits.allLargeBlocks = request.size;
        const auto reading = request.index == 1 ? FileReading::repaired : FileReading::plain;
        std::optional<std::string> password;
        if (request.width == 1) {
            password = std::string(request.textView());
        }
        auto opened = openDrawerMuPdf(loop.source(), password, limits, reading, memory);
        Message answer = WorkerLoop::done(0);
        if (const auto* const failure = std::get_if<LoadFailure>(&opened)) {
            answer.width = *failure == LoadFailure::needsPassword ? 1 : 0;
            return answer;
        }
        drawer = std::move(std::get<std::unique_ptr<PageDrawer>>(opened));
        answer.index = static_cast<std::int32_t>(drawer->pageCount());
        return answer;
    }

    Message draw(WorkerLoop& loop, const Message& request) {
        const Message stopped = WorkerLoop::done(static_cast<int>(DrawnPdfPage::End::stopped));
        if (!drawer) {
            return stopped;
        }
        DrawnPdfPage page = drawer->draw(static_cast<std::size_t>(request.index));
        if (page.end != DrawnPdfPage::End::drawn || !page.image) {
            return WorkerLoop::done(static_cast<int>(page.end));
        }
        auto answer = loop.done(std::move(page.image));
        if (!answer) {
            return stopped;
        }
        answer->number = page.isComplete ? 1 : 0;
        return *answer;
    }

    MuPdfMemory memory;
    std::unique_ptr<PageDrawer> drawer;
};

} // namespace

int main() {
    PdfWorker worker;
    WorkerLoop::run(
        Profiles::pdf(), [] {},
        [&](WorkerLoop& loop, const Message& request) { return worker.answer(loop, request); });
}
