// Reads whole pages with Tesseract, which finds the lines itself. Without dictionaries.
#pragma once

#include "detect/Recognition.h"
#include "platform/ocr/TesseractEngines.h"

namespace murkwell {

// Refers to the engines, does not own them.
class TextRecognizerTesseract final : public TextRecognizer {
public:
    explicit TextRecognizerTesseract(TesseractEngines& shared) : engines(shared) {}

    // Failed without its language data, and when a page takes too long.
    [[nodiscard]] RecognizedText recognize(const Bitmap& image) override;
    [[nodiscard]] Readiness readiness() override;

private:
    TesseractEngines& engines;
};

} // namespace murkwell
