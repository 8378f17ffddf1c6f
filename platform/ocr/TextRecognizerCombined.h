// The text recogniser of the program: PP-OCR, and Tesseract for what it misses.
#pragma once

#include "platform/ocr/TextRecognizerPpOcr.h"
#include "platform/ocr/TextRecognizerTesseract.h"

namespace murkwell {

// Both read at the same time. Where one cannot, the other reads alone, which is partial. A page
// with transparent places is read twice, on white paper and on black.
class TextRecognizerCombined final : public TextRecognizer {
public:
    [[nodiscard]] RecognizedText recognize(const Bitmap& image) override;
    [[nodiscard]] Readiness readiness() override;

private:
    [[nodiscard]] RecognizedText look(const Bitmap& image);

    TextRecognizerPpOcr ppOcr;
    TextRecognizerTesseract tesseract;
};

} // namespace murkwell
