// Reads text with PP-OCRv4: one neural network finds the lines of a page, another reads each.
// Knows printable ASCII.
#pragma once

#include "detect/Recognition.h"

#include <memory>

namespace murkwell {

class TextRecognizerPpOcr final : public TextRecognizer {
public:
    TextRecognizerPpOcr();
    ~TextRecognizerPpOcr() override;

    // Failed without ONNX Runtime or a whole set of models, and when a line could not be read.
    [[nodiscard]] RecognizedText recognize(const Bitmap& image) override;
    [[nodiscard]] Readiness readiness() override;

private:
    struct Networks;

    Networks& networks();

    std::unique_ptr<Networks> loaded;
};

} // namespace murkwell
