#include "platform/ocr/LineJoiner.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace murkwell {
namespace {

// Shares of the line height.
constexpr double widestGap = .8;
constexpr double deepestOverlap = .6;
constexpr double largestStep = .3; // of the middle of the line
constexpr double largestGrowth = .35;

double right(const PageLine& line) {
    return line.box.x + line.box.width;
}

bool continues(const PageLine& line, const PageLine& next) {
    const double smaller = std::min(line.height, next.height);
    const double larger = std::max(line.height, next.height);
    const double gap = next.box.x - right(line);
    return !line.vertical && !next.vertical && larger - smaller < largestGrowth * larger &&
           std::abs(next.start.y - line.end.y) < largestStep * smaller &&
           gap < widestGap * smaller && gap > -deepestOverlap * next.height;
}

void append(PageLine& line, PageLine&& next) {
    const double from = right(line);
    line.text += ' ' + next.text;
    line.characterBoxes.emplace_back(cv::Point2d(from, line.box.y),
                                     cv::Point2d(next.box.x, next.box.y + next.box.height));
    line.characterBoxes.insert(line.characterBoxes.end(), next.characterBoxes.begin(),
                               next.characterBoxes.end());
    line.box |= next.box;
    line.end = next.end;
}

} // namespace

std::vector<PageLine> joinLines(std::vector<PageLine> pieces) {
    std::ranges::sort(pieces, {}, [](const PageLine& piece) { return piece.box.x; });
    std::vector<PageLine> lines;
    std::vector<bool> used(pieces.size());
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        if (used[i]) {
            continue;
        }
        PageLine line = std::move(pieces[i]);
        for (std::size_t j = i + 1; j < pieces.size(); ++j) {
            if (pieces[j].box.x - right(line) > 3 * widestGap * line.height) {
                break; // and all that follow stand further right
            }
            if (!used[j] && continues(line, pieces[j])) {
                append(line, std::move(pieces[j]));
                used[j] = true;
            }
        }
        lines.push_back(std::move(line));
    }
    std::ranges::stable_sort(lines, {}, [](const PageLine& line) { return line.box.y; });
    return lines;
}

} // namespace murkwell
