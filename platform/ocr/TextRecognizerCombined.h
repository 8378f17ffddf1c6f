// The text recogniser of the program: PP-OCR, and Tesseract for what it misses.
#pragma once

#include "platform/ocr/TextRecognizerPpOcr.h"
#include "platform/ocr/TextRecognizerTesseract.h"

namespace murkwell {

// Both read at the same time. Where one cannot, the other reads alone, which is partial.
class TextRecognizerCombined final : public TextRecognizer {
public:
    [[nodiscard]] RecognizedText recognize(const Bitmap& image) override;
    [[nodiscard]] Readiness readiness() override;

private:
    TextRecognizerPpOcr ppOcr;
    TextRecognizerTesseract tesseract;
};

} // namespace murkwell
