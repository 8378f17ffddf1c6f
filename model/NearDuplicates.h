// Which of the boxes that a search found say something new.
#pragma once

#include "core/Geometry.h"
#include "core/Redaction.h"

#include <vector>

namespace murkwell {

// Those found that repeat neither a box that is there nor one found before them. A box repeats
// another when the two nearly coincide and nothing would be uncovered without it: it lies within
// the other but for a hair, so that neighbouring rows of small print stay two. The size is the
// page's in pixels.
[[nodiscard]] std::vector<Redaction> withoutNearDuplicates(const std::vector<Redaction>& found,
                                                           const std::vector<Redaction>& existing,
                                                           PixelSize page);

} // namespace murkwell
