#include "platform/ocr/PageTiles.h"

#include "platform/ocr/LineStrip.h"

#include <algorithm>
#include <cmath>
#include <opencv2/imgproc.hpp>
#include <optional>

namespace murkwell {
namespace {

constexpr int overlap = 140;      // pixels of the page; lines up to this height lie whole in a tile
constexpr int longestTile = 6000; // pixels of the page
constexpr int thinnestTile = 2 * overlap;

// Begins of tiles of that size that cover a length, evenly spread.
std::vector<int> beginsOf(int length, int size) {
    if (size >= length) {
        return {0};
    }
    const int count = (length - overlap + size - overlap - 1) / (size - overlap);
    std::vector<int> begins;
    for (int i = 0; i < count; ++i) {
        begins.push_back(static_cast<int>(static_cast<long>(length - size) * i / (count - 1)));
    }
    return begins;
}

float across(const cv::RotatedRect& line) {
    return std::min(line.size.width, line.size.height);
}

float length(const cv::RotatedRect& line) {
    return std::max(line.size.width, line.size.height);
}

double shared(const cv::RotatedRect& a, const cv::RotatedRect& b) {
    if ((a.boundingRect2f() & b.boundingRect2f()).empty()) {
        return 0;
    }
    std::vector<cv::Point2f> outline;
    if (cv::rotatedRectangleIntersection(a, b, outline) == cv::INTERSECT_NONE ||
        outline.size() < 3) {
        return 0;
    }
    std::vector<cv::Point2f> ordered;
    cv::convexHull(outline, ordered);
    return cv::contourArea(ordered);
}

bool alikeInHeight(const cv::RotatedRect& a, const cv::RotatedRect& b) {
    constexpr float least = .6F;
    return std::min(across(a), across(b)) > least * std::max(across(a), across(b));
}

cv::RotatedRect around(const cv::RotatedRect& a, const cv::RotatedRect& b) {
    std::vector<cv::Point2f> corners(8);
    a.points(corners.data());
    b.points(corners.data() + 4);
    return cv::minAreaRect(corners);
}

// One line in place of the two when they are the same one or pieces of it.
std::optional<cv::RotatedRect> united(const cv::RotatedRect& a, const cv::RotatedRect& b) {
    constexpr double same = .6; // shares of the smaller one's area
    constexpr double continued = .02;
    constexpr float growth = 1.25F; // of the height: pieces of one line lie on one line
    if (!alikeInHeight(a, b)) {
        return std::nullopt;
    }
    const cv::RotatedRect& longer = length(a) >= length(b) ? a : b;
    const double share = shared(a, b) / std::min(a.size.area(), b.size.area());
    if (share > same) {
        return longer;
    }
    const cv::RotatedRect both = around(a, b);
    return share > continued && isVertical(a) == isVertical(b) &&
                   across(both) < growth * std::max(across(a), across(b))
               ? std::optional(both)
               : std::nullopt;
}

using Lines = std::vector<cv::RotatedRect>;

// Calls visit(i, j) for pairs of lines whose bounding boxes meet, i standing higher.
template <typename Visit>
void forMeetingPairs(const Lines& lines, const Visit& visit) {
    std::vector<cv::Rect2f> boxes;
    for (const cv::RotatedRect& line : lines) {
        boxes.push_back(line.boundingRect2f());
    }
    std::vector<std::size_t> order(lines.size());
    for (std::size_t i = 0; i < order.size(); ++i) {
        order[i] = i;
    }
    std::ranges::sort(order, {}, [&](std::size_t i) { return boxes[i].y; });
    for (std::size_t a = 0; a < order.size(); ++a) {
        for (std::size_t b = a + 1; b < order.size() && boxes[order[b]].y < boxes[order[a]].br().y;
             ++b) {
            if (!(boxes[order[a]] & boxes[order[b]]).empty()) {
                visit(order[a], order[b]);
            }
        }
    }
}

void dropMarked(Lines& lines, const std::vector<bool>& marked) {
    std::size_t at = 0;
    std::erase_if(lines, [&](const cv::RotatedRect&) { return marked[at++]; });
}

void dropThickOnes(Lines& lines) {
    constexpr double filled = .4;
    std::vector<double> thin(lines.size());
    forMeetingPairs(lines, [&](std::size_t i, std::size_t j) {
        if (!alikeInHeight(lines[i], lines[j])) {
            const std::size_t thick = across(lines[i]) > across(lines[j]) ? i : j;
            thin[thick] += shared(lines[i], lines[j]);
        }
    });
    std::vector<bool> dropped(lines.size());
    for (std::size_t i = 0; i < lines.size(); ++i) {
        dropped[i] = thin[i] > filled * lines[i].size.area();
    }
    dropMarked(lines, dropped);
}

// Whether any two were united.
bool uniteOnce(Lines& lines) {
    std::vector<bool> dropped(lines.size());
    bool any = false;
    forMeetingPairs(Lines(lines), [&](std::size_t i, std::size_t j) {
        if (dropped[i] || dropped[j]) {
            return;
        }
        if (const auto both = united(lines[i], lines[j])) {
            lines[i] = *both;
            dropped[j] = true;
            any = true;
        }
    });
    dropMarked(lines, dropped);
    return any;
}

} // namespace

std::vector<cv::Rect> tilesOf(const cv::Size& page, bool linesRunDown, double area) {
    const int pageLength = linesRunDown ? page.height : page.width;
    const int pageAcross = linesRunDown ? page.width : page.height;
    const int length = std::min(pageLength, longestTile);
    const int thickness =
        std::min(pageAcross, std::max(thinnestTile, static_cast<int>(area / length)));
    std::vector<cv::Rect> tiles;
    for (const int a : beginsOf(pageAcross, thickness)) {
        for (const int l : beginsOf(pageLength, length)) {
            tiles.push_back(linesRunDown ? cv::Rect(a, l, thickness, length)
                                         : cv::Rect(l, a, length, thickness));
        }
    }
    return tiles;
}

bool isCutLengthwise(const cv::RotatedRect& line, const cv::Rect& tile, const cv::Size& page,
                     bool linesRunDown) {
    constexpr float near = 4;
    if (isVertical(line) != linesRunDown) {
        return false;
    }
    const cv::Rect2f box = line.boundingRect2f();
    return linesRunDown ? (tile.x > 0 && box.x < near) ||
                              (tile.br().x < page.width &&
                               box.br().x > static_cast<float>(tile.width) - near)
                        : (tile.y > 0 && box.y < near) ||
                              (tile.br().y < page.height &&
                               box.br().y > static_cast<float>(tile.height) - near);
}

std::vector<cv::RotatedRect> withoutRepeats(std::vector<cv::RotatedRect> lines) {
    constexpr int mostRounds = 8; // a line lies in few tiles
    dropThickOnes(lines);
    for (int round = 0; round < mostRounds && uniteOnce(lines); ++round) {
    }
    return lines;
}

} // namespace murkwell
