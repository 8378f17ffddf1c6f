// A page that is too large for one look is looked at in tiles that overlap.
#pragma once

#include <opencv2/core.hpp>
#include <vector>

namespace murkwell {

// Tiles of at most about that area (pixels of the page) that cover the page. They are long across
// the page, or down it when its lines run down.
[[nodiscard]] std::vector<cv::Rect> tilesOf(const cv::Size& page, bool linesRunDown, double area);

// Whether a line in pixels of its tile ends at a long side of the tile that lies inside the page,
// and runs along it: only a part of its height is there.
[[nodiscard]] bool isCutLengthwise(const cv::RotatedRect& line, const cv::Rect& tile,
                                   const cv::Size& page, bool linesRunDown);

// The lines without what was found twice, and the pieces of one line put together. Where thin lines
// fill a thick one, that was the look from afar and is dropped.
[[nodiscard]] std::vector<cv::RotatedRect> withoutRepeats(std::vector<cv::RotatedRect> lines);

} // namespace murkwell
