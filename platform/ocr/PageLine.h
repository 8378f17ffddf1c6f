// A line of text as an engine found it on the page.
#pragma once

#include "core/Bitmap.h"
#include "detect/Recognition.h"

#include <opencv2/core.hpp>
#include <string>
#include <vector>

namespace murkwell {

// Boxes are in pixels of the page, origin top-left, and may reach over its edges.
struct PageLine {
    std::string text; // UTF-8
    cv::Rect2d box;
    std::vector<cv::Rect2d> characterBoxes; // one per code point

    // Where the line runs: the middles of its two ends and its extent across.
    cv::Point2d start;
    cv::Point2d end;
    double height;
    bool vertical; // it runs down or up the page
};

[[nodiscard]] RecognizedLine recognizedLine(PageLine line, const Bitmap& image);

} // namespace murkwell
