// A line of text as it was found and read on the page.
#pragma once

#include "core/Bitmap.h"
#include "detect/Recognition.h"
#include "platform/ocr/LineStrip.h"

#include <array>
#include <opencv2/core.hpp>
#include <string>
#include <vector>

namespace murkwell {

// Boxes are in pixels of the page, origin top-left, and may reach over its edges.
struct LineText {
    std::string text;                       // UTF-8
    std::vector<cv::Rect2d> characterBoxes; // one per code point
};

// What the same place was read as, in a fixed order of readers, so that pieces of a line can be
// joined reading by reading. Many of them are alike.
using LineTexts = std::array<LineText, 7>;

struct PageLine {
    LineTexts texts;
    cv::Rect2d box;

    // Where the line runs: the middles of its two ends and its extent across, in pixels.
    cv::Point2d start;
    cv::Point2d end;
    double height;
    Direction direction;
};

// One line for each text that differs from those before it.
[[nodiscard]] std::vector<RecognizedLine> recognizedLines(const PageLine& line,
                                                          const Bitmap& image);

} // namespace murkwell
