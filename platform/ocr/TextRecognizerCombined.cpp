#include "platform/ocr/TextRecognizerCombined.h"

#include "core/ParallelFor.h"
#include "platform/ocr/LineMerge.h"

#include <utility>

namespace murkwell {

std::optional<std::vector<RecognizedLine>> TextRecognizerCombined::recognize(const Bitmap& image) {
    std::optional<std::vector<RecognizedLine>> first;
    std::optional<std::vector<RecognizedLine>> second;
    // A reader that throws has read nothing, as one that fails; the other stands in for it.
    static_cast<void>(parallelFor(2, [&](std::size_t reader) {
        if (reader == 0) {
            first = ppOcr.recognize(image);
        } else {
            second = tesseract.recognize(image);
        }
    }));
    if (!first || !second) {
        return first ? std::move(first) : std::move(second);
    }
    return mergeReadings(std::move(*first), std::move(*second), {image.width(), image.height()});
}

} // namespace murkwell
