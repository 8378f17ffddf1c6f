// Where each character of a strip begins and ends.
#pragma once

#include "platform/ocr/LineStrip.h"
#include "platform/ocr/StripReading.h"

#include <string>
#include <vector>

namespace murkwell {

// A visible character and its columns in strip space.
struct PlacedCharacter {
    std::string text; // UTF-8
    std::string nearly;
    double left;
    double right;
    bool spaceRead;    // a space before it, as the reader saw it
    bool spaceDecided; // the same when the widths of the gaps have their say
};

// The visible characters in their order; no space is before the first. Cuts run through blank
// columns where there are some between two characters. The image is that of the line alone.
[[nodiscard]] std::vector<PlacedCharacter> placeCharacters(const std::vector<ReadCharacter>& read,
                                                           const cv::Mat& line);

} // namespace murkwell
