// Puts the pieces together into which a line was parted at its wide gaps.
#pragma once

#include "platform/ocr/PageLine.h"

#include <vector>

namespace murkwell {

// Level pieces of the same height on one baseline with less than a space or two between them
// become one line, a space standing for the gap. The result is in order of the top edges.
[[nodiscard]] std::vector<PageLine> joinLines(std::vector<PageLine> pieces);

} // namespace murkwell
