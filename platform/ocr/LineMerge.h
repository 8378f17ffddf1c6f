// What two looks at one page gave, put together.
#pragma once

#include "detect/Recognition.h"

#include <vector>

namespace murkwell {

// Of looks on papers of different colour: the lines of the first, then those of the second that say
// something else or stand elsewhere.
[[nodiscard]] std::vector<RecognizedLine> mergeLooks(std::vector<RecognizedLine> first,
                                                     std::vector<RecognizedLine> second);

} // namespace murkwell
