// One line of a page, turned level and brought to the height that the readers take.
//
// Strip space: pixels of the line in the strip, x along it from its first character, y downward.
#pragma once

#include <array>
#include <opencv2/core.hpp>
#include <optional>
#include <vector>

namespace murkwell {

// Where a line runs on the page, each a quarter turn clockwise from the one before. A slanted line
// counts to the nearest, one along the diagonal to the right or to the left.
enum class Direction { right, down, left, up };

[[nodiscard]] constexpr Direction opposite(Direction direction) {
    return static_cast<Direction>((static_cast<int>(direction) + 2) % 4);
}

[[nodiscard]] constexpr bool isUpright(Direction direction) {
    return direction == Direction::down || direction == Direction::up;
}

struct LineStrip {
    static constexpr int height = 48; // rows of the line; what PP-OCR's reader was trained with
    // Rows above and below it: lines are found without their accents, which reach in there.
    static constexpr int margin = 6;

    cv::Mat image;                      // 8-bit, blue, green, red; with the margins
    cv::Matx33d toPage;                 // from strip space to pixels of the page
    std::array<cv::Point2f, 4> corners; // of the line on the page: start and end of its top, end
                                        // and start of its bottom

    // The image without its margins: strip space.
    [[nodiscard]] cv::Mat line() const { return image.rowRange(margin, margin + height); }

    // Extent of the line across its direction, in pixels of the page.
    [[nodiscard]] double lineHeight() const;

    // Around what lies between two columns of the strip, in pixels of the page.
    [[nodiscard]] cv::Rect2d pageBox(double left, double right) const;
};

// None when the rectangle is degenerate or the strip cannot be made. Pixels are RGBA,
// premultiplied.
[[nodiscard]] std::optional<LineStrip> cutStrip(const cv::Mat& pixels, const cv::RotatedRect& line,
                                                Direction direction);

// Whether a line of that rectangle runs down or up the page.
[[nodiscard]] bool isVertical(const cv::RotatedRect& line);

} // namespace murkwell
