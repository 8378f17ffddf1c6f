#include "platform/ocr/InkProfile.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <opencv2/imgproc.hpp>

namespace murkwell {
namespace {

using Histogram = std::array<long, 256>;

constexpr int leastDifference = 12; // grey levels; less is paper

Histogram histogramOf(const cv::Mat& grey) {
    Histogram histogram{};
    for (int y = 0; y < grey.rows; ++y) {
        for (int x = 0; x < grey.cols; ++x) {
            ++histogram[grey.at<uchar>(y, x)];
        }
    }
    return histogram;
}

// The grey around which most pixels lie.
int paperOf(const Histogram& histogram) {
    constexpr int spread = 6;
    int paper = 0;
    long most = -1;
    for (int level = 0; level < 256; ++level) {
        long count = 0;
        for (int near = std::max(0, level - spread); near <= std::min(255, level + spread);
             ++near) {
            count += histogram[static_cast<std::size_t>(near)];
        }
        if (count > most) {
            most = count;
            paper = level;
        }
    }
    return paper;
}

// The difference from the paper that one pixel in fifty reaches.
int largestDifference(const Histogram& histogram, int paper, long pixels) {
    Histogram differences{};
    for (int level = 0; level < 256; ++level) {
        differences[static_cast<std::size_t>(std::abs(level - paper))] +=
            histogram[static_cast<std::size_t>(level)];
    }
    int difference = 255;
    for (long seen = 0; difference > 0; --difference) {
        seen += differences[static_cast<std::size_t>(difference)];
        if (seen >= pixels / 50) {
            break;
        }
    }
    return difference;
}

} // namespace

bool hasLightInk(const cv::Mat& strip) {
    constexpr int block = 48; // columns, over which a shadow hardly changes
    cv::Mat grey;
    cv::cvtColor(strip, grey, cv::COLOR_BGR2GRAY);
    double skew = 0;
    for (int x = 0; x < grey.cols; x += block) {
        const Histogram histogram = histogramOf(grey.colRange(x, std::min(x + block, grey.cols)));
        const int paper = paperOf(histogram);
        for (int level = 0; level < 256; ++level) {
            const double difference = level - paper;
            skew += difference * difference * difference *
                    static_cast<double>(histogram[static_cast<std::size_t>(level)]);
        }
    }
    return skew > 0;
}

InkProfile::InkProfile(const cv::Mat& strip, double share)
    : counts(static_cast<std::size_t>(strip.cols)) {
    const int edge = strip.rows / 8;
    cv::Mat grey;
    cv::cvtColor(strip.rowRange(edge, strip.rows - edge), grey, cv::COLOR_BGR2GRAY);
    const Histogram histogram = histogramOf(grey);
    const int paper = paperOf(histogram);
    const long pixels = static_cast<long>(grey.rows) * grey.cols;
    const int threshold = std::max(
        leastDifference, static_cast<int>(largestDifference(histogram, paper, pixels) * share));
    for (int y = 0; y < grey.rows; ++y) {
        for (int x = 0; x < grey.cols; ++x) {
            counts[static_cast<std::size_t>(x)] +=
                std::abs(grey.at<uchar>(y, x) - paper) > threshold ? 1 : 0;
        }
    }
}

std::optional<BlankRun> InkProfile::widestBlank(double from, double to) const {
    const int first = std::max(0, static_cast<int>(from));
    const int last = std::min(columns() - 1, static_cast<int>(to));
    BlankRun widest{0, 0};
    int begin = first;
    for (int x = first; x <= last; ++x) {
        if (!isBlank(x)) {
            begin = x + 1;
        } else if (x + 1 - begin > widest.width()) {
            widest = {begin, x + 1};
        }
    }
    return widest.width() > 0 ? std::optional(widest) : std::nullopt;
}

} // namespace murkwell
