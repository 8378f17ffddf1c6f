#include "platform/ocr/PageLine.h"

#include "platform/vision/PixelMatrix.h"

#include <utility>

namespace murkwell {

RecognizedLine recognizedLine(PageLine line, const Bitmap& image) {
    RecognizedLine result{std::move(line.text), recognizerRect(line.box, image), {}};
    result.characterBoxes.reserve(line.characterBoxes.size());
    for (const cv::Rect2d& box : line.characterBoxes) {
        result.characterBoxes.push_back(recognizerRect(box, image));
    }
    return result;
}

} // namespace murkwell
