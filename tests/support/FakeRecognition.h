// Engines that answer what a test wants and count how often they were asked.
#pragma once

#include "detect/Recognition.h"

#include <atomic>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace murkwell {

// A line whose i-th code point (each one byte here) stands at x = i / 100, 1 % wide, from y = 0.5
// to 0.6; the box of the line itself reaches further than any of them.
inline RecognizedLine asciiLine(std::string text) {
    RecognizedLine line{std::move(text), {0, 0.45, 0.99, 0.2}, {}};
    for (std::size_t i = 0; i < line.text.size(); ++i) {
        line.characterBoxes.push_back({static_cast<double>(i) / 100, 0.5, 0.01, 0.1});
    }
    return line;
}

class FakeTextRecognizer final : public TextRecognizer {
public:
    explicit FakeTextRecognizer(std::optional<std::vector<RecognizedLine>> lines)
        : answer(std::move(lines)) {}

    RecognizedText recognize(const Bitmap& image) override {
        ++calls;
        const bool works = answer && !failingHeights.contains(image.height());
        return works ? RecognizedText{*answer, outcome} : RecognizedText{{}, Outcome::failed};
    }
    Readiness readiness() override { return ready; }

    std::optional<std::vector<RecognizedLine>> answer; // none: the engine fails
    std::set<int> failingHeights;                      // of pages on which it fails too
    Outcome outcome = Outcome::whole;
    Readiness ready;
    std::atomic<int> calls{0};
};

class FakeFaceDetector final : public FaceDetector {
public:
    explicit FakeFaceDetector(std::optional<std::vector<RecognizerRect>> faces)
        : answer(std::move(faces)) {}

    std::optional<std::vector<RecognizerRect>> detectFaces(const Bitmap& image) override {
        ++calls;
        return failingHeights.contains(image.height()) ? std::nullopt : answer;
    }
    Readiness readiness() override { return ready; }

    std::optional<std::vector<RecognizerRect>> answer; // none: the engine fails
    std::set<int> failingHeights;                      // of pages on which it fails too
    Readiness ready;
    std::atomic<int> calls{0};
};

} // namespace murkwell
