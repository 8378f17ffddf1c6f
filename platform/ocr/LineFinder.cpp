#include "platform/ocr/LineFinder.h"

#include "platform/ocr/LineStrip.h"
#include "platform/ocr/PageTiles.h"
#include "platform/vision/OnnxSession.h"
#include "platform/vision/PixelMatrix.h"

#include <algorithm>
#include <cmath>
#include <opencv2/imgproc.hpp>
#include <utility>

namespace murkwell {
namespace {

constexpr double usualScale = .7;      // of the page: half the work, and no line is lost by it
constexpr double smallArea = .6e6;     // pixels; up to this a page keeps its size
constexpr double largestArea = 1.3e6;  // pixels of one look; a megapixel takes 150 MB
constexpr int stride = 32;             // the network takes multiples of this
constexpr double textProbability = .3; // of a pixel, to belong to a line
constexpr double lineProbability = .5; // mean over a line's outline
constexpr float thinnestLine = 3;      // pixels
// The network marks the kernels of lines; area x growth / perimeter is how far they reach out.
constexpr float growth = 1.6F;

cv::Mat searchedImage(const cv::Mat& pixels, double scale) {
    if (scale == 1) {
        return onWhite(pixels);
    }
    const cv::Size size(std::max(1, cvRound(pixels.cols * scale)),
                        std::max(1, cvRound(pixels.rows * scale)));
    cv::Mat smaller;
    cv::resize(pixels, smaller, size, 0, 0, cv::INTER_AREA);
    return onWhite(smaller);
}

cv::Mat paddedToStride(const cv::Mat& image) {
    cv::Mat padded;
    cv::copyMakeBorder(image, padded, 0, (stride - image.rows % stride) % stride, 0,
                       (stride - image.cols % stride) % stride, cv::BORDER_REPLICATE);
    return padded;
}

// Planes of blue, green and red, each brought to the mean and spread the network was trained with.
Tensor inputFor(const cv::Mat& image) {
    constexpr float mean[] = {.485F, .456F, .406F};
    constexpr float spread[] = {.229F, .224F, .225F};
    const auto plane = static_cast<std::size_t>(image.rows) * static_cast<std::size_t>(image.cols);
    Tensor input{{1, 3, image.rows, image.cols}, std::vector<float>(3 * plane)};
    for (std::size_t c = 0; c < 3; ++c) {
        float* to = input.values.data() + c * plane;
        for (int y = 0; y < image.rows; ++y) {
            const uchar* from = image.ptr(y) + c;
            for (int x = 0; x < image.cols; ++x, from += 3) {
                *to++ = (static_cast<float>(*from) / 255.F - mean[c]) / spread[c];
            }
        }
    }
    return input;
}

constexpr double square(double value) {
    return value * value;
}

double meanInside(const std::vector<cv::Point>& outline, const cv::Mat& probability) {
    const cv::Rect area =
        cv::boundingRect(outline) & cv::Rect(0, 0, probability.cols, probability.rows);
    cv::Mat mask(area.size(), CV_8U, cv::Scalar(0));
    cv::fillPoly(mask, std::vector{outline}, cv::Scalar(1), cv::LINE_8, 0, -area.tl());
    return cv::mean(probability(area), mask)[0];
}

std::vector<cv::RotatedRect> linesIn(const cv::Mat& probability) {
    std::vector<std::vector<cv::Point>> outlines;
    cv::Mat text;
    cv::compare(probability, textProbability, text, cv::CMP_GT);
    cv::findContours(text, outlines, cv::RETR_LIST, cv::CHAIN_APPROX_SIMPLE);
    std::vector<cv::RotatedRect> lines;
    for (const auto& outline : outlines) {
        if (outline.size() < 3) {
            continue;
        }
        cv::RotatedRect line = cv::minAreaRect(outline);
        cv::Size2f& size = line.size;
        if (std::min(size.width, size.height) < thinnestLine ||
            meanInside(outline, probability) < lineProbability) {
            continue;
        }
        const float reach = size.area() * growth / (2 * (size.width + size.height));
        size.width += 2 * reach;
        size.height += 2 * reach;
        lines.push_back(line);
    }
    return lines;
}

using Places = std::vector<cv::RotatedRect>;

// Looks at the pixels once, brought to that scale. Places are in pixels of what is given.
std::optional<Places> look(const cv::Mat& pixels, double scale, OnnxSession& network) {
    const cv::Mat image = paddedToStride(searchedImage(pixels, scale));
    auto outputs = network.run(inputFor(image));
    const std::vector<std::int64_t> expected{1, 1, image.rows, image.cols};
    if (!outputs || outputs->front().shape != expected) {
        return std::nullopt;
    }
    const cv::Mat probability(image.size(), CV_32F, outputs->front().values.data());
    Places lines = linesIn(probability);
    const auto enlarge = static_cast<float>(1 / scale);
    for (cv::RotatedRect& line : lines) {
        line.center *= enlarge;
        line.size *= enlarge;
    }
    return lines;
}

// Whether most of what was found, by length, runs down or up the page.
bool mostRunDown(const Places& places) {
    double level = 0;
    double upright = 0;
    for (const cv::RotatedRect& place : places) {
        (isVertical(place) ? upright : level) += std::max(place.size.width, place.size.height);
    }
    return upright > level;
}

// The same with the page turned by a quarter: the network finds small lines better that lie level.
std::optional<Places> lookTurned(const cv::Mat& pixels, double scale, OnnxSession& network) {
    cv::Mat turned;
    cv::rotate(pixels, turned, cv::ROTATE_90_COUNTERCLOCKWISE);
    auto places = look(turned, scale, network);
    if (places) {
        for (cv::RotatedRect& place : *places) {
            place.center = {static_cast<float>(pixels.cols) - place.center.y, place.center.x};
            std::swap(place.size.width, place.size.height);
        }
    }
    return places;
}

// Looks at the parts of a large page and adds what is in each. Tiles lie along the lines, so that
// few of these are cut; a line cut lengthwise lies whole in the next tile.
bool addFromTiles(const cv::Mat& pixels, OnnxSession& network, Places& places) {
    const bool down = mostRunDown(places);
    for (const cv::Rect& tile : tilesOf(pixels.size(), down, largestArea / square(usualScale))) {
        auto found = look(pixels(tile), usualScale, network);
        if (!found) {
            return false;
        }
        for (cv::RotatedRect& place : *found) {
            if (!isCutLengthwise(place, tile, pixels.size(), down)) {
                place.center += cv::Point2f(tile.tl());
                places.push_back(place);
            }
        }
    }
    return true;
}

} // namespace

std::optional<std::vector<cv::RotatedRect>> findLines(const cv::Mat& pixels, OnnxSession& network) {
    const double area = static_cast<double>(pixels.cols) * pixels.rows;
    if (area * square(usualScale) <= largestArea) {
        const double scale = std::clamp(std::sqrt(smallArea / area), usualScale, 1.0);
        auto places = look(pixels, scale, network);
        return places && mostRunDown(*places) ? lookTurned(pixels, scale, network)
                                              : std::move(places);
    }
    auto places = look(pixels, std::sqrt(largestArea / area), network);
    if (!places || !addFromTiles(pixels, network, *places)) {
        return std::nullopt;
    }
    return withoutRepeats(std::move(*places));
}

} // namespace murkwell
