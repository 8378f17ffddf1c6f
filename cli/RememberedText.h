// A text recogniser that reads no page twice.
#pragma once

#include "detect/Recognition.h"

#include <map>

namespace murkwell::cli {

// One thread at a time.
class RememberedText final : public TextRecognizer {
public:
    explicit RememberedText(TextRecognizer& used) : recognizer(used) {}

    [[nodiscard]] RecognizedText recognize(const Bitmap& page) override {
        const auto known = pages.find(page.contents());
        if (known != pages.end()) {
            return known->second;
        }
        return pages[page.contents()] = recognizer.recognize(page);
    }

    [[nodiscard]] Readiness readiness() override { return recognizer.readiness(); }

private:
    TextRecognizer& recognizer;
    std::map<Bitmap::Contents, RecognizedText> pages;
};

} // namespace murkwell::cli
