#include "platform/pdf/PageSchedule.h"

#include <algorithm>
#include <atomic>
#include <gtest/gtest.h>
#include <new>
#include <string>

namespace murkwell {
namespace {

using End = DrawnPdfPage::End;

// What a document does, a letter a page: '.' is drawn, '0' impossible, 's' stopped among others and
// drawn alone, 'S' always stopped, 't' and 'T' the same by an exception, '!' damaged until
// repaired.
struct Script {
    std::string pages;
    // Whether it can be opened for the first, second ... time, for a page alone or for several.
    std::function<bool(int time, bool alone)> opens;
    std::string pagesOnceRepaired;
};

class ScriptedDrawer final : public PageDrawer {
public:
    ScriptedDrawer(std::string given, bool alone) : pages(std::move(given)), isAlone(alone) {}

    [[nodiscard]] std::size_t pageCount() const override { return pages.size(); }

    [[nodiscard]] DrawnPdfPage draw(std::size_t page) override {
        switch (pages[page]) {
        case '0':
            return {End::drawn};
        case '!':
            return {End::repaired};
        case 's':
        case 'S':
            return isAlone && pages[page] == 's' ? drawn(page) : DrawnPdfPage{End::stopped};
        case 't':
        case 'T':
            if (!isAlone || pages[page] == 'T') {
                throw std::bad_alloc();
            }
            return drawn(page);
        default:
            return drawn(page);
        }
    }

private:
    // As wide as its number, so that one in another's place shows.
    static DrawnPdfPage drawn(std::size_t page) {
        return {End::drawn, Bitmap::create(static_cast<int>(page) + 1, 1)};
    }

    std::string pages;
    bool isAlone;
};

// "1 - 3": the pages by their width; "refused".
std::string outcome(const Script& script, std::size_t threads) {
    std::atomic<int> openings{0};
    std::atomic<std::size_t> largestBlock{0};
    const auto open = [&](const PageLimits& limits, FileReading reading) -> OpenedDrawer {
        std::size_t first = 0;
        largestBlock.compare_exchange_strong(first, limits.largestBlock);
        const bool isAlone = limits.largestBlock > largestBlock;
        if (!script.opens(++openings, isAlone)) {
            return LoadFailure::unreadable;
        }
        return std::make_unique<ScriptedDrawer>(
            reading == FileReading::repaired ? script.pagesOnceRepaired : script.pages, isAlone);
    };
    const auto result = drawAllPages(open, threads);
    const auto* const pages = std::get_if<std::vector<RenderedPage>>(&result);
    if (pages == nullptr) {
        return "refused";
    }
    std::string text;
    for (const RenderedPage& page : *pages) {
        text += text.empty() ? "" : " ";
        text += page.image ? std::to_string(page.image->size().width) : "-";
    }
    return text;
}

TEST(PageSchedule, TheNumberOfThreadsChangesNothing) {
    const auto always = [](int, bool) { return true; };
    const auto never = [](int, bool) { return false; };
    const auto onceAndAlone = [](int time, bool alone) { return time == 1 || alone; };
    const auto together = [](int, bool alone) { return !alone; };
    struct Case {
        const char* what;
        Script script;
        const char* outcome;
    };
    for (const Case& c : std::vector<Case>{
             {"all well", {".....", always, ""}, "1 2 3 4 5"},
             {"what the file makes impossible is left out", {"0.0..", always, ""}, "- 2 - 4 5"},
             {"nothing else is", {"..S..", always, ""}, "refused"},
             {"a page alone comes after all", {"s.s..s", always, ""}, "1 2 3 4 5 6"},
             {"every page alone", {"sssssss", always, ""}, "1 2 3 4 5 6 7"},
             {"memory runs out on a thread", {".t..t.", always, ""}, "1 2 3 4 5 6"},
             {"and alone", {".T", always, ""}, "refused"},
             {"one thread opens it", {"......", onceAndAlone, ""}, "1 2 3 4 5 6"},
             {"none after a retry", {"s.s...", onceAndAlone, ""}, "1 2 3 4 5 6"},
             {"none for the retry", {"..s...", together, ""}, "refused"},
             {"none at all", {"..", never, ""}, "refused"},
             {"damage in the middle", {"...!..", always, "0....."}, "- 2 3 4 5 6"},
             {"damage that other pages are seen through", {"..!", always, "0.s."}, "- 2 3 4"},
             {"damage that stays", {"!.", always, "!."}, "refused"},
         }) {
        for (const std::size_t threads : {1U, 2U, 6U, 16U}) {
            EXPECT_EQ(outcome(c.script, threads), c.outcome) << c.what << ", " << threads;
        }
    }
}

} // namespace
} // namespace murkwell
