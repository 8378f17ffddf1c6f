// What two readers saw on one page, put together.
#pragma once

#include "core/Geometry.h"
#include "detect/Recognition.h"

#include <vector>

namespace murkwell {

// The first reader's lines in their order, then those of the second that say something else or
// stand where the first saw nothing. The second reader is taken to know level text only: where the
// first saw a line run down or up the page of that size, the second's lines are left out.
[[nodiscard]] std::vector<RecognizedLine> mergeReadings(std::vector<RecognizedLine> first,
                                                        std::vector<RecognizedLine> second,
                                                        PixelSize page);

// What two looks at one page gave, on papers of different colour: the lines of the first, then
// those of the second that say something else or stand elsewhere.
[[nodiscard]] std::vector<RecognizedLine> mergeLooks(std::vector<RecognizedLine> first,
                                                     std::vector<RecognizedLine> second);

} // namespace murkwell
