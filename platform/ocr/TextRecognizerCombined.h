// The text recogniser of the program: PP-OCR finds the lines, Tesseract and PP-OCR read them.
#pragma once

#include "detect/Recognition.h"
#include "platform/ocr/TesseractEngines.h"
#include "platform/ocr/TextRecognizerTesseract.h"

#include <memory>

namespace murkwell {

// Without the models of PP-OCR, Tesseract reads whole pages; without Tesseract's data, PP-OCR reads
// every line: both is partial. A page with transparent places is read twice, on white paper and on
// black.
class TextRecognizerCombined final : public TextRecognizer {
public:
    TextRecognizerCombined();
    ~TextRecognizerCombined() override;

    // A place that can be read in several ways gives a line for each.
    [[nodiscard]] RecognizedText recognize(const Bitmap& image) override;
    [[nodiscard]] Readiness readiness() override;

private:
    struct Networks;

    const Networks& networks();
    [[nodiscard]] RecognizedText look(const Bitmap& image);
    [[nodiscard]] RecognizedText readByLines(const Bitmap& image);

    std::unique_ptr<Networks> loaded;
    TesseractEngines engines;
    TextRecognizerTesseract wholePages{engines};
};

} // namespace murkwell
