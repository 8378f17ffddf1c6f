#include "platform/vision/Grain.h"

#include "platform/vision/PixelMatrix.h"

#include <algorithm>
#include <cstdlib>
#include <opencv2/imgproc.hpp>
#include <vector>

namespace murkwell {
namespace {

// Standard deviation of the noise in grey levels. The median response of a mask that flat and
// sloped areas leave at 0 (Immerkaer 1996) looks past the edges of text and faces.
double grainOf(const cv::Mat& pixels) {
    const cv::Matx33f mask(1, -2, 1, -2, 4, -2, 1, -2, 1);
    constexpr double maskGain = 6;
    constexpr double medianOfNormal = .6745; // of its absolute values, in standard deviations
    cv::Mat grey;
    cv::Mat response;
    cv::cvtColor(onWhite(pixels), grey, cv::COLOR_BGR2GRAY);
    cv::filter2D(grey, response, CV_16S, mask);
    std::vector<int> sizes;
    for (int y = 1; y < response.rows - 1; y += 2) {
        for (int x = 1; x < response.cols - 1; x += 3) {
            sizes.push_back(std::abs(response.at<short>(y, x)));
        }
    }
    if (sizes.empty()) {
        return 0;
    }
    const auto middle = sizes.begin() + static_cast<std::ptrdiff_t>(sizes.size() / 2);
    std::ranges::nth_element(sizes, middle);
    return *middle / (maskGain * medianOfNormal);
}

} // namespace

cv::Mat withoutGrain(const cv::Mat& pixels, double most) {
    if (grainOf(pixels) <= most) {
        return pixels;
    }
    cv::Mat smooth;
    cv::medianBlur(pixels, smooth, 3);
    return smooth;
}

} // namespace murkwell
