// Turns a page bitmap and its redactions into a flattened copy: the only place where boxes become
// pixels. Stateless; may run on any thread, pages in parallel.
#pragma once

#include "core/Bitmap.h"
#include "core/Redaction.h"

#include <cstddef>
#include <limits>
#include <span>

namespace murkwell {

class RandomSource;

namespace RedactionEngine {

inline constexpr std::size_t anyNumber = std::numeric_limits<std::size_t>::max();

// A fresh bitmap of the same size in which every pixel that a box touches is replaced; no value of
// a covered pixel enters the fill. Boxes are rounded outward to whole pixels, later ones cover
// earlier ones, and one that rounds to less than a pixel is skipped. Null when memory runs out.
//
// With no more than `mostColours` outside of all boxes, there are no more afterwards: for want of
// room, boxes are painted in the nearest colours from outside.
[[nodiscard]] BitmapRef burn(const Bitmap& page, std::span<const Redaction> redactions,
                             RandomSource& random, std::size_t mostColours = anyNumber);

} // namespace RedactionEngine
} // namespace murkwell
