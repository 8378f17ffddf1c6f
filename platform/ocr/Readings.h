// From what the readers saw in one strip to the texts that are searched in that place.
#pragma once

#include "platform/ocr/PageLine.h"
#include "platform/ocr/StripReading.h"

#include <optional>

namespace murkwell {

// Every reading is kept: Tesseract's and PP-OCR's, each with the spaces that its reader saw and
// with those that the gaps speak for, and with characters that the reader often takes for others or
// nearly took for them put right. None when no reader saw anything.
[[nodiscard]] std::optional<PageLine> pageLine(const LineStrip& strip, Direction direction,
                                               const StripReading& tesseract,
                                               const StripReading& ppOcr);

} // namespace murkwell
