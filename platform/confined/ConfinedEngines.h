// All engines of a program that look at what others made, each behind walls.
#pragma once

#include "platform/confined/ImageCodecConfined.h"
#include "platform/confined/PdfRendererConfined.h"
#include "platform/confined/RecognitionConfined.h"

#include <optional>
#include <string>

namespace murkwell {

// Nothing is started before it is first used.
struct ConfinedEngines {
    Workers workers;
    PdfRendererConfined pdfRenderer{workers};
    ImageCodecConfined imageCodec{workers};
    RecognitionWorker recognition{workers};
    TextRecognizerConfined textRecognizer{recognition};
    FaceDetectorConfined faceDetector{recognition};

    // In the user's language: which walls the workers had to do without so far.
    [[nodiscard]] std::optional<std::string> notice() const;
};

} // namespace murkwell
