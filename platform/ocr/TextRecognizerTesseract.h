// Reads text with Tesseract: English data, no dictionaries.
#pragma once

#include "detect/Recognition.h"

#include <memory>

namespace murkwell {

class TextRecognizerTesseract final : public TextRecognizer {
public:
    TextRecognizerTesseract();
    ~TextRecognizerTesseract() override;

    // None without its language data.
    [[nodiscard]] std::optional<std::vector<RecognizedLine>>
    recognize(const Bitmap& image) override;

private:
    class Pool;

    std::unique_ptr<Pool> pool;
};

} // namespace murkwell
