#include "platform/vision/PixelMatrix.h"

#include <mutex>

namespace murkwell {
namespace {

// OpenCV waits for ever for helpers of its own that the system refused to start. What it does here
// is little beside the networks, which have their own threads.
void useNoThreads() {
    static std::once_flag once;
    std::call_once(once, [] { cv::setNumThreads(1); });
}

} // namespace

cv::Mat pixelsOf(const Bitmap& bitmap) {
    useNoThreads();
    // OpenCV has no matrix of constant elements.
    auto* const data = const_cast<Rgba*>(bitmap.pixels().data());
    return {bitmap.height(), bitmap.width(), CV_8UC4, data};
}

cv::Mat onWhite(const cv::Mat& pixels) {
    cv::Mat result(pixels.size(), CV_8UC3);
    for (int y = 0; y < pixels.rows; ++y) {
        const auto* const from = pixels.ptr<cv::Vec4b>(y);
        auto* const to = result.ptr<cv::Vec3b>(y);
        for (int x = 0; x < pixels.cols; ++x) {
            const int paper = 255 - from[x][3];
            for (int c = 0; c < 3; ++c) {
                to[x][c] = cv::saturate_cast<uchar>(from[x][2 - c] + paper);
            }
        }
    }
    return result;
}

RecognizerRect recognizerRect(const cv::Rect2d& box, const Bitmap& image) {
    return {box.x / image.width(), 1 - (box.y + box.height) / image.height(),
            box.width / image.width(), box.height / image.height()};
}

} // namespace murkwell
