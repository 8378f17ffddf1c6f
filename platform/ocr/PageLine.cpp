#include "platform/ocr/PageLine.h"

#include "platform/vision/PixelMatrix.h"

#include <algorithm>

namespace murkwell {

std::vector<RecognizedLine> recognizedLines(const PageLine& line, const Bitmap& image) {
    std::vector<RecognizedLine> lines;
    for (const LineText& reading : line.texts) {
        const bool said =
            std::ranges::find(lines, reading.text, &RecognizedLine::text) != lines.end();
        if (said || reading.text.empty()) {
            continue;
        }
        RecognizedLine next{reading.text, recognizerRect(line.box, image), {}};
        for (const cv::Rect2d& box : reading.characterBoxes) {
            next.characterBoxes.push_back(recognizerRect(box, image));
        }
        lines.push_back(std::move(next));
    }
    return lines;
}

} // namespace murkwell
