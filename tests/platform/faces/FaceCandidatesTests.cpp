#include "platform/faces/FaceCandidates.h"

#include "platform/vision/OnnxSession.h"
#include "platform/vision/PixelMatrix.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <gtest/gtest.h>
#include <iterator>
#include <opencv2/imgproc.hpp>
#include <vector>

namespace murkwell {
namespace {

// Answers "no face" everywhere but at one place of one scale.
class FakeNetwork final : public OnnxSession {
public:
    std::optional<std::vector<Tensor>> run(const Tensor& input) override {
        lastInput = input;
        std::vector<Tensor> outputs;
        const std::vector<std::int64_t> steps{8, 16, 32, 64};
        const std::vector<std::int64_t> sides{3, 2, 2, 3};
        for (std::size_t i = 0; i < steps.size(); ++i) {
            const std::int64_t rows = input.shape[2] / steps[i];
            const std::int64_t columns = input.shape[3] / steps[i];
            const auto plane = static_cast<std::size_t>(rows * columns);
            const auto count = static_cast<std::size_t>(sides[i]);
            Tensor scores{{1, 2 * sides[i], rows, columns}, std::vector<float>(2 * count * plane)};
            for (std::size_t side = 0; side < count; ++side) {
                std::fill_n(scores.values.begin() + static_cast<long>(2 * side * plane), plane,
                            9.F);
            }
            outputs.push_back(scores);
            outputs.push_back(
                {{1, 4 * sides[i], rows, columns}, std::vector<float>(4 * count * plane)});
        }
        if (place) {
            place(outputs);
        }
        return outputs;
    }

    void (*place)(std::vector<Tensor>& outputs) = nullptr;
    Tensor lastInput;
};

TEST(FindCandidates, DecodesTheShiftedBoxOfItsPlaceAndSide) {
    FakeNetwork network;
    network.place = [](std::vector<Tensor>& outputs) {
        // Scale of step 16 on 128 x 128: 8 x 8 places; the second side (48), row 3, column 5.
        constexpr std::size_t plane = 64;
        constexpr std::size_t at = 3 * 8 + 5;
        outputs[2].values[2 * plane + at] = 0;
        outputs[2].values[3 * plane + at] = 2;
        outputs[3].values[4 * plane + at] = 1;                 // right by a tenth of the side
        outputs[3].values[5 * plane + at] = -1;                // up by as much
        outputs[3].values[6 * plane + at] = 0;                 // as wide as the side
        outputs[3].values[7 * plane + at] = 5 * std::log(2.F); // twice as high
    };
    const auto found = findCandidates(cv::Mat::zeros(100, 120, CV_8UC3), .5, network);
    ASSERT_TRUE(found);
    ASSERT_EQ(found->size(), 1U);
    const auto& [box, score] = found->front();
    EXPECT_NEAR(score, 1 / (1 + std::exp(-2.0)), 1e-6);
    EXPECT_NEAR(box.x + box.width / 2, 5.5 * 16 + 4.8, 1e-3);
    EXPECT_NEAR(box.y + box.height / 2, 3.5 * 16 - 4.8, 1e-3);
    EXPECT_NEAR(box.width, 48, 1e-3);
    EXPECT_NEAR(box.height, 96, 1e-3);
}

TEST(FindCandidates, InputIsPaddedRedFirstAndCentred) {
    FakeNetwork network;
    cv::Mat picture(1, 2, CV_8UC3, cv::Scalar(10, 127, 255)); // blue, green, red
    ASSERT_TRUE(findCandidates(picture, .5, network));
    EXPECT_EQ(network.lastInput.shape, (std::vector<std::int64_t>{1, 3, 64, 64}));
    EXPECT_FLOAT_EQ(network.lastInput.values[0], 1);
    EXPECT_FLOAT_EQ(network.lastInput.values[64 * 64], 0);
    EXPECT_FLOAT_EQ(network.lastInput.values[2 * 64 * 64], -117 / 128.F);
    EXPECT_FLOAT_EQ(network.lastInput.values[2], -127 / 128.F);
}

TEST(FindCandidates, AnotherNetworkGivesNone) {
    FakeNetwork network;
    network.place = [](std::vector<Tensor>& outputs) { outputs[3].shape.back() += 1; };
    EXPECT_FALSE(findCandidates(cv::Mat::zeros(64, 64, CV_8UC3), .5, network));
    network.place = [](std::vector<Tensor>& outputs) { outputs.pop_back(); };
    EXPECT_FALSE(findCandidates(cv::Mat::zeros(64, 64, CV_8UC3), .5, network));
}

TEST(KeepBest, OneOfThoseThatOverlapMuchOrLieInside) {
    const std::vector<FaceCandidate> candidates{
        {{0, 0, 100, 100}, .6},   {{5, 5, 100, 100}, .9},  // the same face
        {{300, 0, 100, 100}, .7}, {{320, 20, 20, 20}, .5}, // a nose
        {{380, 0, 100, 100}, .5},                          // a neighbour
    };
    std::vector<double> scores;
    for (const FaceCandidate& kept : keepBest(candidates)) {
        scores.push_back(kept.score);
    }
    EXPECT_EQ(scores, (std::vector<double>{.9, .7, .5}));
    EXPECT_TRUE(keepBest({}).empty());
}

// It waits for ever for those that the system refuses to start.
TEST(PixelMatrix, OpenCvStartsNoThreads) {
    const auto count = [] {
        return std::ranges::distance(std::filesystem::directory_iterator("/proc/self/task"));
    };
    const auto before = count();
    const auto page = Bitmap::create(2000, 2000);
    cv::Mat grey;
    cv::cvtColor(pixelsOf(*page), grey, cv::COLOR_RGBA2GRAY);
    EXPECT_EQ(count(), before);
}

} // namespace
} // namespace murkwell
