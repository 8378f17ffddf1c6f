#include "platform/confined/PdfRendererConfined.h"

#include "platform/pdf/PageSchedule.h"

#include <cstring>
#include <exception>

namespace murkwell {
namespace {

using End = DrawnPdfPage::End;
using Kind = Message::Kind;

// What all drawers of a document share.
struct Job {
    Workers& workers;
    SharedMemory file;
    const std::optional<std::string>& password;
};

class PageDrawerConfined final : public PageDrawer {
public:
    PageDrawerConfined(Job& shared, const PageLimits& given, FileReading how)
        : job(shared), limits(given), reading(how) {}

    // Why the document cannot be used.
    std::optional<LoadFailure> open() {
        auto answer = openOnce();
        if (!answer && worker && !worker->isLate() && !worker->hasCrashed()) {
            answer = openOnce(); // somebody killed it, for which the document may not be to blame
        }
        if (!answer || answer->index < 0 || answer->index > mostPages) {
            return LoadFailure::unreadable;
        }
        count = static_cast<std::size_t>(answer->index);
        return count > 0 ? std::nullopt
                         : std::optional(answer->width == 1 ? LoadFailure::needsPassword
                                                            : LoadFailure::unreadable);
    }

    [[nodiscard]] std::size_t pageCount() const override { return count; }

    DrawnPdfPage draw(std::size_t page) override {
        const std::size_t pagesBefore = count;
        if (!worker && (open() || count != pagesBefore)) {
            worker.reset();
            count = pagesBefore;
            return {End::stopped};
        }
        Message request;
        request.kind = Kind::page;
        request.index = static_cast<std::int32_t>(page);
        job.workers.allow(*worker, limits.pageTime);
        const auto answer = job.workers.ask(*worker, request);
        auto drawn = answer ? read(*answer) : std::nullopt;
        if (drawn) {
            return *std::move(drawn);
        }
        // A page that breaks the engine does so every time: the file makes it impossible.
        const bool isImpossible = worker->hasCrashed();
        worker.reset();
        return {isImpossible ? End::drawn : End::stopped};
    }

private:
    static constexpr std::int32_t mostPages = 1'000'000;

    // The answer of a new worker, which may be null without an answer.
    std::optional<Message> openOnce() {
        worker = job.workers.start("murkwell-pdf");
        Message request;
        request.kind = Kind::open;
        request.index = reading == FileReading::repaired ? 1 : 0;
        request.width = job.password ? 1 : 0;
        request.size = limits.allLargeBlocks / limits.drawers;
        request.number = static_cast<double>(limits.largestBlock);
        if (!worker || !request.setText(job.password.value_or("")) ||
            !worker->sendSource(job.file)) {
            return std::nullopt;
        }
        job.workers.allow(*worker, limits.openingTime);
        auto answer = job.workers.ask(*worker, request);
        ::explicit_bzero(request.text.data(), request.text.size());
        return answer;
    }

    // None when it makes no sense.
    std::optional<DrawnPdfPage> read(const Message& answer) {
        if (answer.index == static_cast<int>(End::stopped) ||
            answer.index == static_cast<int>(End::repaired)) {
            return DrawnPdfPage{static_cast<End>(answer.index)};
        }
        if (answer.index != static_cast<int>(End::drawn)) {
            return std::nullopt;
        }
        if (answer.width == 0) {
            return DrawnPdfPage{End::drawn};
        }
        auto image = worker->takeBitmap(answer);
        return image ? std::optional(
                           DrawnPdfPage{End::drawn, std::move(image), answer.number == complete})
                     : std::nullopt;
    }

    static constexpr double complete = 1;

    Job& job;
    PageLimits limits;
    FileReading reading;
    std::unique_ptr<WorkerProcess> worker;
    std::size_t count = 0;
};

} // namespace

PdfRenderer::Result PdfRendererConfined::render(std::span<const std::byte> pdf,
                                                const std::optional<std::string>& password) {
    workers.beginDocument();
    auto file = SharedMemory::sealedCopy(pdf);
    if (!file) {
        return LoadFailure::unreadable;
    }
    Job job{workers, std::move(*file), password};
    try {
        return drawAllPages(
            [&](const PageLimits& limits, FileReading reading) -> OpenedDrawer {
                auto drawer = std::make_unique<PageDrawerConfined>(job, limits, reading);
                if (const auto failure = drawer->open()) {
                    return *failure;
                }
                return drawer;
            },
            threadCount);
    } catch (const std::exception&) {
        return LoadFailure::unreadable; // no memory, no thread
    }
}

} // namespace murkwell
