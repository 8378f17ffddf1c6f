// Reads the lines of a page once it is known where they stand.
#pragma once

#include "platform/ocr/PageLine.h"

#include <opencv2/core.hpp>
#include <optional>
#include <vector>

namespace murkwell {

class PpOcrStripReader;
class TesseractEngines;

struct StripReaders {
    TesseractEngines& tesseract;
    const PpOcrStripReader& ppOcr;
};

// Every line is read by Tesseract, what it doubts by PP-OCR as well; the lines of one page are read
// by all processors. Which way they run is decided by the longest of them. Pixels are RGBA,
// premultiplied. Lines without text are left out; in no order. None when not every place could be
// looked at: it is not to be taken for one without text.
[[nodiscard]] std::optional<std::vector<PageLine>>
readLines(const cv::Mat& pixels, const std::vector<cv::RotatedRect>& places,
          const StripReaders& readers);

} // namespace murkwell
