#include "platform/ocr/LineMerge.h"

#include <algorithm>
#include <utility>

namespace murkwell {
namespace {

double sharedArea(const RecognizerRect& a, const RecognizerRect& b) {
    const double width = std::min(a.maxX(), b.maxX()) - std::max(a.minX(), b.minX());
    const double height = std::min(a.maxY(), b.maxY()) - std::max(a.minY(), b.minY());
    return std::max(0.0, width) * std::max(0.0, height);
}

// The share of the box that lies on the line.
double shareOn(const RecognizedLine& line, const RecognizerRect& box) {
    const double area = box.width * box.height;
    return area > 0 ? sharedArea(line.box, box) / area : 0;
}

// Whether the other line has that text too, at the same place.
bool says(const RecognizedLine& other, const RecognizedLine& line) {
    constexpr double onSame = .3; // share of the line
    return shareOn(other, line.box) > onSame && other.text.find(line.text) != std::string::npos;
}

bool runsDownOrUp(const RecognizedLine& line, PixelSize page) {
    constexpr std::size_t fewest = 3; // a single "1" is higher than wide too
    return line.text.size() >= fewest &&
           line.box.height * page.height > 1.5 * line.box.width * page.width;
}

} // namespace

std::vector<RecognizedLine> mergeReadings(std::vector<RecognizedLine> first,
                                          std::vector<RecognizedLine> second, PixelSize page) {
    constexpr double onVertical = .2; // share of the second reader's line
    std::erase_if(second, [&](const RecognizedLine& line) {
        double vertical = 0;
        bool said = false;
        for (const RecognizedLine& other : first) {
            if (runsDownOrUp(other, page)) {
                vertical += shareOn(other, line.box);
            }
            said = said || says(other, line);
        }
        return said || vertical > onVertical;
    });
    first.insert(first.end(), std::move_iterator(second.begin()), std::move_iterator(second.end()));
    return first;
}

std::vector<RecognizedLine> mergeLooks(std::vector<RecognizedLine> first,
                                       std::vector<RecognizedLine> second) {
    std::erase_if(second, [&](const RecognizedLine& line) {
        return std::ranges::any_of(first,
                                   [&](const RecognizedLine& other) { return says(other, line); });
    });
    first.insert(first.end(), std::move_iterator(second.begin()), std::move_iterator(second.end()));
    return first;
}

} // namespace murkwell
