#include "platform/ocr/LineMerge.h"

#include <algorithm>
#include <iterator>
#include <string>

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

} // namespace

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
