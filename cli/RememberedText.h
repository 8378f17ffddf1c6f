// A text recogniser that reads no page twice.
#pragma once

#include "detect/Recognition.h"

#include <map>

namespace murkwell::cli {

// For pages that all live as long as this object. One thread at a time.
class RememberedText final : public TextRecognizer {
public:
    explicit RememberedText(TextRecognizer& used) : recognizer(used) {}

    [[nodiscard]] RecognizedText recognize(const Bitmap& page) override {
        const auto known = pages.find(&page);
        if (known != pages.end()) {
            return known->second;
        }
        return pages[&page] = recognizer.recognize(page);
    }

    [[nodiscard]] Readiness readiness() override { return recognizer.readiness(); }

private:
    TextRecognizer& recognizer;
    std::map<const Bitmap*, RecognizedText> pages;
};

} // namespace murkwell::cli
