// Finds faces with UltraFace (RFB), a small neural network, at several sizes of the picture, and
// asks it again about each: drawings, hands and cloth that fool it at one size rarely do so at all.
#pragma once

#include "detect/Recognition.h"

#include <memory>

namespace murkwell {

class OnnxSession;

class FaceDetectorUltraFace final : public FaceDetector {
public:
    FaceDetectorUltraFace();
    ~FaceDetectorUltraFace() override;

    // None without ONNX Runtime or the model.
    [[nodiscard]] std::optional<std::vector<RecognizerRect>>
    detectFaces(const Bitmap& image) override;
    [[nodiscard]] Readiness readiness() override;

private:
    struct Network;

    // Null when it is missing or damaged.
    OnnxSession* network();

    std::unique_ptr<Network> loaded;
};

} // namespace murkwell
