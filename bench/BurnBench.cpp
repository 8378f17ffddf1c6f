// What burning costs, against copying the page.
#include "bench/Measure.h"
#include "core/RandomSource.h"
#include "core/RedactionEngine.h"

#include <cstring>
#include <vector>

namespace {

using namespace murkwell;

constexpr int turns = 60;

std::vector<Redaction> manyBoxes() {
    std::vector<Redaction> boxes;
    for (int i = 0; i < 200; ++i) {
        const PageRect rect{0.05 + i % 4 * 0.22, 0.02 + i / 4 * 0.019, 0.18, 0.012};
        boxes.push_back({Uuid{}, rect, RedactionStyle::solidBlack, false});
    }
    return boxes;
}

void compare(const char* what, const std::vector<Redaction>& boxes, double limit) {
    const auto page = Bitmap::create(1224, 1584);
    std::ranges::fill(page->pixels(), Rgba{240, 240, 240, 255});
    std::vector<Rgba> copy(page->pixels().size());
    SystemRandomSource random;
    const auto best = bench::takeTurns(
        turns, [&] { (void)RedactionEngine::burn(*page, boxes, random); },
        [&] { std::memcpy(copy.data(), page->pixels().data(), page->pixels().size_bytes()); });
    bench::printRatio(what, best.measured / best.reference, limit);
}

} // namespace

int main() {
    compare("burn, 200 black boxes : memcpy of the page", manyBoxes(), 2.5);
    compare("burn, one box of noise over the page : memcpy",
            {{Uuid{}, {0, 0, 1, 1}, RedactionStyle::noise, false}}, 6);
}
