// The text recogniser of the program: PP-OCR, and Tesseract for what it misses.
#pragma once

#include "platform/ocr/TextRecognizerPpOcr.h"
#include "platform/ocr/TextRecognizerTesseract.h"

namespace murkwell {

// Both read at the same time. Where one cannot, the other reads alone.
class TextRecognizerCombined final : public TextRecognizer {
public:
    [[nodiscard]] std::optional<std::vector<RecognizedLine>>
    recognize(const Bitmap& image) override;

    // Whether Tesseract has to do without PP-OCR; loads the models.
    [[nodiscard]] bool readsWithTesseractAlone() { return !ppOcr.isUsable(); }

private:
    TextRecognizerPpOcr ppOcr;
    TextRecognizerTesseract tesseract;
};

} // namespace murkwell
