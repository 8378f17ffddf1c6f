#include "platform/ocr/TextRecognizerCombined.h"

#include "core/ParallelFor.h"
#include "platform/ocr/LineMerge.h"
#include "platform/vision/Transparency.h"

#include <algorithm>
#include <utility>

namespace murkwell {
namespace {

Outcome together(Outcome first, Outcome second) {
    if (first == second) {
        return first;
    }
    return Outcome::partial;
}

} // namespace

RecognizedText TextRecognizerCombined::recognize(const Bitmap& image) {
    RecognizedText text = look(image);
    if (hasTransparency(image)) {
        const BitmapRef dark = onBlack(image);
        RecognizedText again = dark ? look(*dark) : RecognizedText{{}, Outcome::failed};
        text.lines = mergeLooks(std::move(text.lines), std::move(again.lines));
        text.outcome = std::max(text.outcome, again.outcome);
    }
    return text;
}

RecognizedText TextRecognizerCombined::look(const Bitmap& image) {
    RecognizedText first{{}, Outcome::failed};
    RecognizedText second{{}, Outcome::failed};
    // A reader that throws has read nothing, as one that fails; the other stands in for it.
    static_cast<void>(parallelFor(2, [&](std::size_t reader) {
        if (reader == 0) {
            first = ppOcr.recognize(image);
        } else {
            second = tesseract.recognize(image);
        }
    }));
    return {mergeReadings(std::move(first.lines), std::move(second.lines),
                          {image.width(), image.height()}),
            together(first.outcome, second.outcome)};
}

Readiness TextRecognizerCombined::readiness() {
    Readiness both = ppOcr.readiness();
    const Readiness second = tesseract.readiness();
    both.outcome = together(both.outcome, second.outcome);
    both.missing.insert(both.missing.end(), second.missing.begin(), second.missing.end());
    return both;
}

} // namespace murkwell
