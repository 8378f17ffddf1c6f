// The samples of a TIFF, however many bits they have and wherever they lie.
#pragma once

#include "platform/image/TiffFile.h"
#include "platform/image/TimeLimit.h"

#include <vips/vips8>

namespace murkwell {

// Grey, RGB or CMYK of up to 16 bits, with whatever else there is in a pixel.
[[nodiscard]] bool hasReadableSamples(const TiffLayout& layout);

// Pixels of 8 bits, or of 16 when more than 8 are stored; alpha is straight. No side of the layout
// is zero, and memory can hold the picture and a tile. Throws vips::VError when any part is
// missing, and when time runs out.
[[nodiscard]] vips::VImage readTiffSamples(const Tiff& tiff, const TiffLayout& layout,
                                           const TimeLimit& limit);

} // namespace murkwell
