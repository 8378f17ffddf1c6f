// Noise of a camera or a scanner.
#pragma once

#include <opencv2/core.hpp>

namespace murkwell {

// The pixels (RGBA, premultiplied), smoothed when the standard deviation of their noise is above
// that many grey levels; else the same and not a copy.
[[nodiscard]] cv::Mat withoutGrain(const cv::Mat& pixels, double most);

} // namespace murkwell
