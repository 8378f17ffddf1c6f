#include "detect/RecognizedBoxes.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <span>
#include <unicode/utf16.h>

namespace murkwell {
namespace {

// A lone surrogate counts as a code point.
std::size_t codePoints(std::u16string_view text) {
    std::size_t count = 0;
    for (std::size_t i = 0; i < text.size(); ++count) {
        U16_FWD_1(text.data(), i, text.size());
    }
    return count;
}

bool coversSomething(const RecognizerRect& box) {
    return std::isfinite(box.x) && std::isfinite(box.y) && std::isfinite(box.width) &&
           std::isfinite(box.height) && box.width > 0 && box.height > 0;
}

std::optional<RecognizerRect> around(std::span<const RecognizerRect> boxes) {
    std::optional<RecognizerRect> all;
    for (const RecognizerRect& box : boxes) {
        if (!coversSomething(box)) {
            continue;
        }
        if (!all) {
            all = box;
            continue;
        }
        const double right = std::max(all->maxX(), box.maxX());
        const double top = std::max(all->maxY(), box.maxY());
        all->x = std::min(all->x, box.x);
        all->y = std::min(all->y, box.y);
        all->width = right - all->x;
        all->height = top - all->y;
    }
    return all;
}

} // namespace

PageRect normalize(const RecognizerRect& box) {
    const double x = std::clamp(box.minX(), 0.0, 1.0);
    const double y = std::clamp(1 - box.maxY(), 0.0, 1.0);
    return {x, y, std::max(0.0, std::min(1 - x, box.maxX() - box.minX())),
            std::max(0.0, std::min(1 - y, box.maxY() - box.minY()))};
}

RecognizerRect expandedFace(const RecognizerRect& face) {
    const double side = 0.12 * face.width;
    const double up = 0.55 * face.height;
    const double down = 0.10 * face.height;
    return {face.x - side, face.y - down, face.width + 2 * side, face.height + up + down};
}

RecognizerRect boxOf(const RecognizedLine& line, std::u16string_view text, TextRange range) {
    if (line.characterBoxes.size() != codePoints(text)) {
        return line.box;
    }
    const std::size_t first = codePoints(text.substr(0, range.begin));
    const std::size_t count = codePoints(text.substr(range.begin, range.end - range.begin));
    return around(std::span(line.characterBoxes).subspan(first, count)).value_or(line.box);
}

} // namespace murkwell
