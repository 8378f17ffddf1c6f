#include "platform/ocr/LineStrip.h"

#include "platform/vision/PixelMatrix.h"

#include <algorithm>
#include <cmath>
#include <opencv2/imgproc.hpp>

namespace murkwell {
namespace {

constexpr int narrowestStrip = 16;
constexpr int widestStrip = 6400; // a longer line is squeezed
constexpr int stripStep = 8;      // PP-OCR's reader takes a step of this many columns
constexpr int imageHeight = LineStrip::height + 2 * LineStrip::margin;

using Corners = std::array<cv::Point2f, 4>;

double distance(const cv::Point2f& a, const cv::Point2f& b) {
    return cv::norm(a - b);
}

// Top left, top right, bottom right, bottom left as the page shows them.
Corners cornersOf(const cv::RotatedRect& line) {
    Corners p{};
    line.points(p.data());
    std::ranges::sort(p, {}, &cv::Point2f::x);
    if (p[0].y > p[1].y) {
        std::swap(p[0], p[1]);
    }
    if (p[2].y > p[3].y) {
        std::swap(p[2], p[3]);
    }
    return {p[0], p[2], p[3], p[1]};
}

bool standsUpright(const Corners& c) {
    const double width = std::max(distance(c[0], c[1]), distance(c[3], c[2]));
    const double height = std::max(distance(c[0], c[3]), distance(c[1], c[2]));
    return height >= 1.5 * width;
}

// In reading order: start and end of the line's top, end and start of its bottom.
Corners readingOrder(Corners c, Direction direction) {
    std::ranges::rotate(c, c.begin() + static_cast<int>(direction));
    return c;
}

int stripWidth(const Corners& c) {
    const double length = std::max(distance(c[0], c[1]), distance(c[3], c[2]));
    const double across = std::max(distance(c[0], c[3]), distance(c[1], c[2]));
    const int width =
        std::clamp(cvCeil(std::min<double>(length * LineStrip::height / across, widestStrip)),
                   narrowestStrip, widestStrip);
    return (width + stripStep - 1) / stripStep * stripStep;
}

// With what the strip shows above and below the line.
Corners withMargins(const Corners& c) {
    constexpr float share = static_cast<float>(LineStrip::margin) / LineStrip::height;
    const cv::Point2f before = (c[0] - c[3]) * share;
    const cv::Point2f after = (c[1] - c[2]) * share;
    return {c[0] + before, c[1] + after, c[2] - after, c[3] - before};
}

// The part of the page around the line, made smaller when its glyphs are much larger than the strip
// so that no thin stroke falls between the samples.
struct Surroundings {
    cv::Mat pixels;
    cv::Matx33d toPage;
};

std::optional<Surroundings> surroundingsOf(const cv::Mat& page, const Corners& corners) {
    constexpr int margin = 3; // pixels that interpolation reaches out
    const cv::Rect box = cv::boundingRect(std::vector<cv::Point2f>(corners.begin(), corners.end()));
    const cv::Rect area =
        cv::Rect(box.x - margin, box.y - margin, box.width + 2 * margin, box.height + 2 * margin) &
        cv::Rect(0, 0, page.cols, page.rows);
    if (area.empty()) {
        return std::nullopt;
    }
    const double across =
        std::max(distance(corners[0], corners[3]), distance(corners[1], corners[2]));
    const int shrink = std::max(1, static_cast<int>(across / imageHeight));
    const cv::Matx33d shift(1, 0, area.x, 0, 1, area.y, 0, 0, 1);
    if (shrink == 1) {
        return Surroundings{page(area), shift};
    }
    cv::Mat smaller;
    cv::resize(page(area), smaller,
               {std::max(1, area.width / shrink), std::max(1, area.height / shrink)}, 0, 0,
               cv::INTER_AREA);
    const double sx = static_cast<double>(area.width) / smaller.cols;
    const double sy = static_cast<double>(area.height) / smaller.rows;
    // Centres of pixels map to centres of pixels.
    const cv::Matx33d enlarge(sx, 0, (sx - 1) / 2, 0, sy, (sy - 1) / 2, 0, 0, 1);
    return Surroundings{smaller, shift * enlarge};
}

} // namespace

double LineStrip::lineHeight() const {
    return std::max(distance(corners[0], corners[3]), distance(corners[1], corners[2]));
}

cv::Rect2d LineStrip::pageBox(double left, double right) const {
    const std::vector<cv::Point2d> inStrip{{left, 0}, {right, 0}, {right, height}, {left, height}};
    std::vector<cv::Point2d> onPage;
    cv::perspectiveTransform(inStrip, onPage, toPage);
    const auto [minX, maxX] = std::ranges::minmax(onPage, {}, &cv::Point2d::x);
    const auto [minY, maxY] = std::ranges::minmax(onPage, {}, &cv::Point2d::y);
    return {minX.x, minY.y, maxX.x - minX.x, maxY.y - minY.y};
}

bool isVertical(const cv::RotatedRect& line) {
    return standsUpright(cornersOf(line));
}

std::optional<LineStrip> cutStrip(const cv::Mat& pixels, const cv::RotatedRect& line,
                                  Direction direction) {
    const Corners corners = readingOrder(cornersOf(line), direction);
    const int width = stripWidth(corners);
    const auto w = static_cast<float>(width);
    const auto h = static_cast<float>(LineStrip::height);
    const Corners inStrip{cv::Point2f{0, 0}, {w, 0}, {w, h}, {0, h}};
    const cv::Matx33d toPage = cv::getPerspectiveTransform(inStrip.data(), corners.data());
    bool invertible = false;
    const cv::Matx33d toStrip = toPage.inv(cv::DECOMP_LU, &invertible);
    const auto source = surroundingsOf(pixels, withMargins(corners));
    if (!source || !invertible) {
        return std::nullopt;
    }
    const cv::Matx33d toImage(1, 0, 0, 0, 1, LineStrip::margin, 0, 0, 1);
    cv::Mat strip;
    cv::warpPerspective(source->pixels, strip, toImage * toStrip * source->toPage,
                        {width, imageHeight}, cv::INTER_CUBIC, cv::BORDER_REPLICATE);
    return LineStrip{onWhite(strip), toPage, corners};
}

} // namespace murkwell
