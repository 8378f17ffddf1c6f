// Reads strips with Tesseract, each as one line without any search for words in it.
#pragma once

#include "platform/ocr/LineStrip.h"
#include "platform/ocr/StripReading.h"
#include "platform/ocr/TesseractEngines.h"

#include <optional>

namespace murkwell {

// None when Tesseract cannot read; an empty reading when it sees no text.
[[nodiscard]] std::optional<StripReading> readWithTesseract(const LineStrip& strip,
                                                            TesseractEngines& engines);

} // namespace murkwell
