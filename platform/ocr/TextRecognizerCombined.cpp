#include "platform/ocr/TextRecognizerCombined.h"

#include "platform/ocr/LineMerge.h"

#include <system_error>
#include <thread>
#include <utility>

namespace murkwell {
namespace {

// Runs both, at the same time when there is a thread to be had.
template <typename First, typename Second>
void runBoth(const First& first, const Second& second) {
    std::jthread other;
    try {
        other = std::jthread(second);
    } catch (const std::system_error&) {
        second();
    }
    first();
}

} // namespace

std::optional<std::vector<RecognizedLine>> TextRecognizerCombined::recognize(const Bitmap& image) {
    std::optional<std::vector<RecognizedLine>> first;
    std::optional<std::vector<RecognizedLine>> second;
    runBoth([&] { first = ppOcr.recognize(image); }, [&] { second = tesseract.recognize(image); });
    if (!first || !second) {
        return first ? std::move(first) : std::move(second);
    }
    return mergeReadings(std::move(*first), std::move(*second), {image.width(), image.height()});
}

} // namespace murkwell
