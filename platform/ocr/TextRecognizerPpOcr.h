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

    // None without ONNX Runtime or a whole set of models.
    [[nodiscard]] std::optional<std::vector<RecognizedLine>>
    recognize(const Bitmap& image) override;

    // Whether it can read at all; loads the models.
    [[nodiscard]] bool isUsable();

private:
    struct Networks;

    Networks& networks();

    std::unique_ptr<Networks> loaded;
};

} // namespace murkwell
