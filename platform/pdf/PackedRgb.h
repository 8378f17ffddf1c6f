// From the pixels that MuPDF draws into to ours.
#pragma once

#include "core/Bitmap.h"

#include <span>

namespace murkwell {

// Expects packed RGB, three bytes a pixel, at the beginning of the memory of these pixels, and
// turns it into opaque RGBA in place: a page needs no second buffer.
void expandPackedRgb(std::span<Rgba> pixels);

} // namespace murkwell
