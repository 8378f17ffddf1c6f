// What the face network answers for one picture at one size.
#pragma once

#include <opencv2/core.hpp>
#include <optional>
#include <vector>

namespace murkwell {

class OnnxSession;

struct FaceCandidate {
    cv::Rect2d box; // pixels, from forehead to chin; may reach over the edges
    double score;   // 0 ... 1
};

// Two for each of the network's scales: scores and shifts of boxes.
constexpr std::size_t faceNetworkOutputs = 8;

// Faces of about 8 to 300 pixels with at least that score, each once. The picture is 8-bit, blue,
// green, red. None when the network fails or is another one.
[[nodiscard]] std::optional<std::vector<FaceCandidate>>
findCandidates(const cv::Mat& picture, double leastScore, OnnxSession& network);

// The best of those that overlap much or lie within another.
[[nodiscard]] std::vector<FaceCandidate> keepBest(std::vector<FaceCandidate> candidates);

// Shared area by the area of both together.
[[nodiscard]] double overlap(const cv::Rect2d& a, const cv::Rect2d& b);

} // namespace murkwell
