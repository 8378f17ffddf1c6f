#include "platform/faces/FaceCandidates.h"

#include "platform/vision/OnnxSession.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <opencv2/imgproc.hpp>
#include <span>

namespace murkwell {
namespace {

// A scale of the network: at every step of so many pixels it judges square boxes of these sides.
struct Scale {
    int step;
    std::array<double, 3> sides;
    std::size_t count; // of the sides
};

// As UltraFace was trained.
constexpr std::array<Scale, faceNetworkOutputs / 2> scales{{
    {8, {10, 16, 24}, 3},
    {16, {32, 48}, 2},
    {32, {64, 96}, 2},
    {64, {128, 192, 256}, 3},
}};
constexpr double centreVariance = .1;
constexpr double sizeVariance = .2;

cv::Mat paddedToStep(const cv::Mat& picture) {
    constexpr int step = scales.back().step;
    cv::Mat padded;
    cv::copyMakeBorder(picture, padded, 0, (step - picture.rows % step) % step, 0,
                       (step - picture.cols % step) % step, cv::BORDER_CONSTANT,
                       cv::Scalar::all(0));
    return padded;
}

// Planes of red, green and blue from -1 to 1.
Tensor inputFor(const cv::Mat& picture) {
    const auto plane =
        static_cast<std::size_t>(picture.rows) * static_cast<std::size_t>(picture.cols);
    Tensor input{{1, 3, picture.rows, picture.cols}, std::vector<float>(3 * plane)};
    for (std::size_t c = 0; c < 3; ++c) {
        float* to = input.values.data() + c * plane;
        for (int y = 0; y < picture.rows; ++y) {
            const uchar* from = picture.ptr(y) + (2 - c);
            for (int x = 0; x < picture.cols; ++x, from += 3) {
                *to++ = (static_cast<float>(*from) - 127.F) / 128.F;
            }
        }
    }
    return input;
}

// The answers for one scale, as planes of rows x columns.
struct Answers {
    const Tensor& scores; // two planes a side: no face, face
    const Tensor& shifts; // four planes a side: x, y, width, height

    [[nodiscard]] std::size_t rows() const { return static_cast<std::size_t>(scores.shape[2]); }
    [[nodiscard]] std::size_t columns() const { return static_cast<std::size_t>(scores.shape[3]); }
    [[nodiscard]] std::size_t plane() const { return rows() * columns(); }
};

bool fit(const Answers& answers, const Scale& scale, const cv::Mat& picture) {
    const std::int64_t rows = picture.rows / scale.step;
    const std::int64_t columns = picture.cols / scale.step;
    const auto sides = static_cast<std::int64_t>(scale.count);
    return answers.scores.shape == std::vector<std::int64_t>{1, 2 * sides, rows, columns} &&
           answers.shifts.shape == std::vector<std::int64_t>{1, 4 * sides, rows, columns};
}

cv::Rect2d shiftedBox(const cv::Point2d& centre, double side, std::span<const float> shifts,
                      std::size_t plane) {
    const cv::Point2d moved =
        centre + centreVariance * side * cv::Point2d(shifts[0], shifts[plane]);
    const double width = side * std::exp(sizeVariance * shifts[2 * plane]);
    const double height = side * std::exp(sizeVariance * shifts[3 * plane]);
    return {moved.x - width / 2, moved.y - height / 2, width, height};
}

void addCandidates(const Answers& answers, const Scale& scale, double leastScore,
                   std::vector<FaceCandidate>& candidates) {
    const std::size_t plane = answers.plane();
    for (std::size_t side = 0; side < scale.count; ++side) {
        const std::span noFace = std::span(answers.scores.values).subspan(2 * side * plane, plane);
        const std::span face =
            std::span(answers.scores.values).subspan((2 * side + 1) * plane, plane);
        const std::span shifts = std::span(answers.shifts.values).subspan(4 * side * plane);
        for (std::size_t i = 0; i < plane; ++i) {
            const double score = 1 / (1 + std::exp(noFace[i] - face[i]));
            if (score >= leastScore) {
                const std::size_t row = i / answers.columns();
                const std::size_t column = i % answers.columns();
                const cv::Point2d centre((static_cast<double>(column) + .5) * scale.step,
                                         (static_cast<double>(row) + .5) * scale.step);
                candidates.push_back(
                    {shiftedBox(centre, scale.sides.at(side), shifts.subspan(i), plane), score});
            }
        }
    }
}

} // namespace

double overlap(const cv::Rect2d& a, const cv::Rect2d& b) {
    const double shared = (a & b).area();
    const double together = a.area() + b.area() - shared;
    return together > 0 ? shared / together : 0;
}

std::vector<FaceCandidate> keepBest(std::vector<FaceCandidate> candidates) {
    constexpr double mostOverlap = .4;
    constexpr double mostWithin = .8; // of the smaller box
    std::ranges::stable_sort(candidates, std::ranges::greater(), &FaceCandidate::score);
    std::vector<FaceCandidate> kept;
    for (const FaceCandidate& next : candidates) {
        const bool isNew = std::ranges::none_of(kept, [&](const FaceCandidate& better) {
            const double smaller = std::min(better.box.area(), next.box.area());
            return overlap(better.box, next.box) > mostOverlap ||
                   (better.box & next.box).area() > mostWithin * smaller;
        });
        if (isNew) {
            kept.push_back(next);
        }
    }
    return kept;
}

std::optional<std::vector<FaceCandidate>> findCandidates(const cv::Mat& picture, double leastScore,
                                                         OnnxSession& network) {
    const cv::Mat padded = paddedToStep(picture);
    const auto outputs = network.run(inputFor(padded));
    if (!outputs || outputs->size() != faceNetworkOutputs) {
        return std::nullopt;
    }
    std::vector<FaceCandidate> candidates;
    for (std::size_t i = 0; i < scales.size(); ++i) {
        const Answers answers{outputs->at(2 * i), outputs->at(2 * i + 1)};
        if (!fit(answers, scales.at(i), padded)) {
            return std::nullopt;
        }
        addCandidates(answers, scales.at(i), leastScore, candidates);
    }
    return keepBest(std::move(candidates));
}

} // namespace murkwell
