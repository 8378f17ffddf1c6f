// A text recogniser that reads no page twice.
#pragma once

#include "detect/Recognition.h"

#include <map>

namespace murkwell::cli {

// For pages that all live as long as this object. One thread at a time.
class RememberedText final : public TextRecognizer {
public:
    explicit RememberedText(TextRecognizer& used) : recognizer(used) {}

    [[nodiscard]] std::optional<std::vector<RecognizedLine>>
    recognize(const Bitmap& page) override {
        const auto known = pages.find(&page);
        if (known != pages.end()) {
            return known->second;
        }
        return pages[&page] = recognizer.recognize(page);
    }

private:
    TextRecognizer& recognizer;
    std::map<const Bitmap*, std::optional<std::vector<RecognizedLine>>> pages;
};

} // namespace murkwell::cli
