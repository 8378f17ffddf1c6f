// Turns a page bitmap and its redactions into a flattened copy: the only place where boxes become
// pixels. Stateless; may run on any thread, pages in parallel.
#pragma once

#include "core/Bitmap.h"
#include "core/Redaction.h"

#include <span>

namespace murkwell {

class RandomSource;

namespace RedactionEngine {

// A fresh bitmap of the same size in which every pixel that a box touches is replaced; no value of
// a covered pixel enters the fill. Boxes are rounded outward to whole pixels, later ones cover
// earlier ones, and one that rounds to less than a pixel is skipped. Null when memory runs out.
[[nodiscard]] BitmapRef burn(const Bitmap& page, std::span<const Redaction> redactions,
                             RandomSource& random);

} // namespace RedactionEngine
} // namespace murkwell
