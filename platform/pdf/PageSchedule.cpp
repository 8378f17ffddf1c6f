#include "platform/pdf/PageSchedule.h"

#include "core/ParallelFor.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <numeric>
#include <optional>
#include <unistd.h>
#include <utility>

namespace murkwell {
namespace {

using namespace std::chrono_literals;
using End = DrawnPdfPage::End;

constexpr std::size_t mebibyte = std::size_t{1} << 20;

// Where pages are drawn side by side. The slowest honest page that we know needs 3 seconds, and a
// block is a colour scan of 178 megapixels.
constexpr PageLimits together{27s, 9s, 512 * mebibyte, 2048 * mebibyte};

// For a page that has the machine to itself, but for the three quarters that pixels may fill.
PageLimits alone() {
    const auto machine = static_cast<std::size_t>(::sysconf(_SC_PHYS_PAGES)) *
                         static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
    return {27s, 27s, 1024 * mebibyte, std::max(together.allLargeBlocks, machine / 4)};
}

class Schedule {
public:
    Schedule(const OpenDrawer& opener, FileReading how, std::size_t threads)
        : open(opener), reading(how), threadCount(threads) {}

    // None when the file turned out to be damaged.
    std::optional<PdfRenderer::Result> run() {
        auto opened = open(sideBySide(), reading);
        if (const auto* const failure = std::get_if<LoadFailure>(&opened)) {
            return *failure;
        }
        first = std::move(std::get<std::unique_ptr<PageDrawer>>(opened));
        pages.resize(first->pageCount());
        waiting.resize(pages.size());
        std::iota(waiting.begin(), waiting.end(), std::size_t{0});
        while (!waiting.empty()) {
            drawTogether();
            // Pages side by side were too much for the machine once, or one takes long.
            threadCount = std::max<std::size_t>(1, threadCount / 2);
            for (const std::size_t page : std::exchange(stopped, {})) {
                if (!isDamaged && !drawAlone(page)) {
                    return LoadFailure::unreadable;
                }
            }
            if (isDamaged) {
                return std::nullopt;
            }
        }
        return std::move(pages);
    }

private:
    [[nodiscard]] PageLimits sideBySide() const {
        PageLimits limits = together;
        limits.drawers = threadCount;
        return limits;
    }

    // One that shows other pages than the others do is of no use.
    std::unique_ptr<PageDrawer> openAnother(const PageLimits& limits) {
        auto opened = open(limits, reading);
        auto* const drawer = std::get_if<std::unique_ptr<PageDrawer>>(&opened);
        return drawer != nullptr && (*drawer)->pageCount() == pages.size() ? std::move(*drawer)
                                                                           : nullptr;
    }

    // Draws what is waiting, until one page does not come.
    void drawTogether() {
        std::atomic<std::size_t> next{0};
        std::atomic<bool> halted{false};
        std::vector<std::optional<End>> ends(waiting.size());
        const auto work = [&](PageDrawer& drawer) {
            for (std::size_t i = 0; !halted && (i = next++) < waiting.size();) {
                ends[i] = End::stopped; // until it is drawn, should that throw
                DrawnPdfPage drawn = drawer.draw(waiting[i]);
                ends[i] = keep(waiting[i], std::move(drawn));
                halted = halted || ends[i] != End::drawn;
            }
        };
        const std::size_t wanted = std::min(threadCount, waiting.size());
        // A job that throws leaves its page to be drawn alone.
        (void)parallelFor(
            wanted,
            [&](std::size_t thread) {
                const auto drawer =
                    thread == 0 && first ? std::move(first) : openAnother(sideBySide());
                if (drawer) { // else the others take its pages
                    work(*drawer);
                }
            },
            wanted);
        first.reset();
        sortOut(ends);
    }

    void sortOut(const std::vector<std::optional<End>>& ends) {
        std::vector<std::size_t> left;
        for (std::size_t i = 0; i < ends.size(); ++i) {
            isDamaged = isDamaged || ends[i] == End::repaired;
            if (!ends[i]) {
                left.push_back(waiting[i]);
            } else if (ends[i] == End::stopped) {
                stopped.push_back(waiting[i]);
            }
        }
        if (left.size() == waiting.size()) { // no drawer could be opened
            stopped.push_back(left.front());
            left.erase(left.begin());
        }
        waiting = std::move(left);
    }

    bool drawAlone(std::size_t page) {
        const auto drawer = openAnother(alone());
        if (!drawer) {
            return false;
        }
        const End end = keep(page, drawer->draw(page));
        isDamaged = end == End::repaired;
        return end != End::stopped;
    }

    // Packs the page. One for which memory does not suffice counts as stopped.
    End keep(std::size_t page, DrawnPdfPage drawn) {
        const bool hasImage = drawn.image != nullptr;
        pages[page] = {PackedBitmap::pack(std::move(drawn.image)), drawn.isComplete};
        return hasImage && !pages[page].image ? End::stopped : drawn.end;
    }

    const OpenDrawer& open;
    FileReading reading;
    std::size_t threadCount;
    std::unique_ptr<PageDrawer> first; // until it is used up
    std::vector<RenderedPage> pages;
    std::vector<std::size_t> waiting; // in order
    std::vector<std::size_t> stopped;
    bool isDamaged = false;
};

} // namespace

PdfRenderer::Result drawAllPages(const OpenDrawer& open, std::size_t threads) {
    try {
        auto result = Schedule(open, FileReading::plain, threads).run();
        if (!result) {
            // Pages drawn before the damage showed could differ from those drawn after it. In a
            // repaired file there is none to be found any more.
            result = Schedule(open, FileReading::repaired, threads).run();
        }
        return result ? *std::move(result) : LoadFailure::unreadable;
    } catch (const std::exception&) {
        return LoadFailure::unreadable; // no memory, or no thread for a deadline
    }
}

} // namespace murkwell
