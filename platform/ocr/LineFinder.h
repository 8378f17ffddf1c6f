// Where text stands on a page: the first of PP-OCR's two networks.
#pragma once

#include <opencv2/core.hpp>
#include <optional>
#include <vector>

namespace murkwell {

class OnnxSession;

// Rectangles around single lines, turned as the lines are turned, in pixels of the page and in no
// order. A large page is looked at as a whole, for huge type, and in tiles, for small type. None
// when the network fails. Pixels are RGBA, premultiplied.
[[nodiscard]] std::optional<std::vector<cv::RotatedRect>> findLines(const cv::Mat& pixels,
                                                                    OnnxSession& network);

} // namespace murkwell
