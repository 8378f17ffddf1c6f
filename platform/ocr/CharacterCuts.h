// Where each character of a strip begins and ends.
#pragma once

#include "platform/ocr/LineReader.h"

#include <vector>

namespace murkwell {

// A character of the finished text and its columns in strip space; a space may have none.
struct PlacedCharacter {
    char character;
    double left;
    double right;
};

// The characters with the spaces that there really are, without any at the ends. Cuts run through
// blank columns where there are some between two characters.
[[nodiscard]] std::vector<PlacedCharacter> placeCharacters(const std::vector<ReadCharacter>& read,
                                                           const cv::Mat& strip);

} // namespace murkwell
