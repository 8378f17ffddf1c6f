// Bitmaps as OpenCV sees them. Coordinates are pixels, origin top-left.
#pragma once

#include "core/Bitmap.h"
#include "core/Geometry.h"

#include <opencv2/core.hpp>

namespace murkwell {

// The bitmap's own pixels (RGBA, premultiplied), not a copy: valid as long as the bitmap, and not
// to be written to.
[[nodiscard]] cv::Mat pixelsOf(const Bitmap& bitmap);

// Such pixels as they look on white paper: 8-bit, blue, green, red.
[[nodiscard]] cv::Mat onWhite(const cv::Mat& pixels);

// From pixels to fractions of an image of that size, y upward.
[[nodiscard]] RecognizerRect recognizerRect(const cv::Rect2d& box, const Bitmap& image);

} // namespace murkwell
