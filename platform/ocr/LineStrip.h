// One line of a page, turned level and brought to the height that the reader takes.
//
// Strip space: pixels of the strip, x along the line from its first character, y downward.
#pragma once

#include <array>
#include <opencv2/core.hpp>
#include <optional>
#include <vector>

namespace murkwell {

struct LineStrip {
    static constexpr int height = 48; // pixels; what the reader was trained with

    cv::Mat image;                      // 8-bit, blue, green, red
    cv::Matx33d toPage;                 // from strip space to pixels of the page
    std::array<cv::Point2f, 4> corners; // on the page: start and end of the top, end and start of
                                        // the bottom
    bool vertical;                      // the line runs down or up the page

    // Extent of the line across its direction, in pixels of the page.
    [[nodiscard]] double lineHeight() const;

    // Around what lies between two columns of the strip, in pixels of the page.
    [[nodiscard]] cv::Rect2d pageBox(double left, double right) const;
};

enum class Reading { along, against }; // a line that runs down the page, or one that runs up

// None when the rectangle is degenerate or the strip cannot be made. Pixels are RGBA,
// premultiplied. Only lines that stand upright on the page can be read against.
[[nodiscard]] std::optional<LineStrip> cutStrip(const cv::Mat& pixels, const cv::RotatedRect& line,
                                                Reading reading);

// Whether a line of that rectangle runs down or up the page.
[[nodiscard]] bool isVertical(const cv::RotatedRect& line);

} // namespace murkwell
