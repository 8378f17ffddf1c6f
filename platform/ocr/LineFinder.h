// Where text stands on a page: the first of PP-OCR's two networks.
#pragma once

#include <opencv2/core.hpp>
#include <optional>
#include <vector>

namespace murkwell {

class OnnxSession;

// Rectangles around single lines, turned as the lines are turned, in pixels of the page and in no
// order. Lines of a large page are looked for on a smaller copy. None when the network fails.
// Pixels are RGBA, premultiplied.
[[nodiscard]] std::optional<std::vector<cv::RotatedRect>> findLines(const cv::Mat& pixels,
                                                                    OnnxSession& network);

} // namespace murkwell
