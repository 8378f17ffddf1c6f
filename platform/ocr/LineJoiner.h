// Puts the pieces together into which a line was parted at its wide gaps.
#pragma once

#include "platform/ocr/PageLine.h"

#include <vector>

namespace murkwell {

// Pieces of the same height that continue each other along their direction with less than a space
// or two between them become one line, a space standing for the gap. Groups of digits that stand
// further apart, as in the fields of a form, are given once more as one line. The result is in
// order of the top edges.
[[nodiscard]] std::vector<PageLine> joinLines(std::vector<PageLine> pieces);

} // namespace murkwell
