// Pages that are transparent in places. Who reads them takes them on white paper, where white ink
// is not to be seen; so they are looked at on black paper as well.
#pragma once

#include "core/Bitmap.h"

namespace murkwell {

[[nodiscard]] bool hasTransparency(const Bitmap& image);

// The image on black paper, opaque. Null when memory runs out.
[[nodiscard]] BitmapRef onBlack(const Bitmap& image);

} // namespace murkwell
