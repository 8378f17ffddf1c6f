// What an undo step costs on a large document, against copying all of its boxes.
#include "bench/Measure.h"
#include "bench/model/Workbench.h"

#include <malloc.h>

namespace {

using namespace murkwell;

constexpr std::size_t pageCount = 300;
constexpr int boxesPerPage = 50;
constexpr int steps = 100;

PageRect place(int i) {
    return {0.1 + 0.08 * (i % 10), 0.1 + 0.15 * static_cast<double>(i) / 10, 0.05, 0.05};
}

void fill(RedactModel& model) {
    for (std::size_t page = 0; page < pageCount; ++page) {
        model.goToPage(static_cast<std::int64_t>(page));
        for (int i = 0; i < boxesPerPage; ++i) {
            (void)model.addRedaction(place(i));
        }
    }
}

// A step as the user makes them: recorded, and a box moved on a page of its own.
void step(RedactModel& model, int i) {
    model.goToPage(i % static_cast<int>(pageCount));
    model.beginInteractiveChange("Move Redaction");
    model.updateRedaction(model.currentRedactions().front().id, place(i % 9));
    model.endInteractiveChange();
}

std::size_t bytesInUse() {
    return ::mallinfo2().uordblks;
}

} // namespace

int main() {
    bench::Workbench bench(pageCount);
    RedactModel& model = bench.model;
    fill(model);

    // Recording alone: the box that moves has left its page's shared list already.
    const auto record = bench::takeTurns(
        300,
        [&] {
            for (int i = 0; i < steps; ++i) {
                model.beginInteractiveChange("Move Redaction");
                model.endInteractiveChange();
            }
        },
        [&] {
            std::vector<std::vector<Redaction>> copy = model.redactionsByPage().toVector();
            bench::keep(copy);
        });
    bench::printRatio("recording a step : deep copy", record.measured / steps / record.reference,
                      0.02);
    const auto change = bench::takeTurns(
        300,
        [&] {
            for (int i = 0; i < steps; ++i) {
                step(model, i);
            }
        },
        [&] {
            std::vector<std::vector<Redaction>> copy = model.redactionsByPage().toVector();
            bench::keep(copy);
        });
    bench::printRatio("recording a step and changing a page : deep copy",
                      change.measured / steps / change.reference, 0.1);

    bench::Workbench fresh(pageCount);
    fill(fresh.model);
    fresh.saveAndReopen();
    const std::size_t before = bytesInUse();
    for (int i = 0; i < steps; ++i) {
        step(fresh.model, i);
    }
    bench::printRatio("memory of 100 steps over the live state, MB",
                      static_cast<double>(bytesInUse() - before) / 1e6, 5);
}
