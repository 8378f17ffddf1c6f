// TextRecognizer and FaceDetector by the recognition worker.
#pragma once

#include "detect/Recognition.h"
#include "platform/confined/RecognitionWorker.h"

namespace murkwell {

class TextRecognizerConfined final : public TextRecognizer {
public:
    explicit TextRecognizerConfined(RecognitionWorker& used) : worker(used) {}

    [[nodiscard]] RecognizedText recognize(const Bitmap& image) override;
    [[nodiscard]] Readiness readiness() override;

private:
    RecognitionWorker& worker;
};

class FaceDetectorConfined final : public FaceDetector {
public:
    explicit FaceDetectorConfined(RecognitionWorker& used) : worker(used) {}

    [[nodiscard]] std::optional<std::vector<RecognizerRect>>
    detectFaces(const Bitmap& image) override;
    [[nodiscard]] Readiness readiness() override;

private:
    RecognitionWorker& worker;
};

} // namespace murkwell
