// Reads text with Tesseract: English data, no dictionaries.
#pragma once

#include "detect/Recognition.h"

#include <memory>

namespace murkwell {

class TextRecognizerTesseract final : public TextRecognizer {
public:
    TextRecognizerTesseract();
    ~TextRecognizerTesseract() override;

    // Failed without its language data, and when a page takes too long.
    [[nodiscard]] RecognizedText recognize(const Bitmap& image) override;
    [[nodiscard]] Readiness readiness() override;

private:
    class Pool;

    std::unique_ptr<Pool> pool;
};

} // namespace murkwell
