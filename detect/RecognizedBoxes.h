// From what recognisers answer to what redactions cover.
#pragma once

#include "core/Geometry.h"
#include "detect/Recognition.h"
#include "detect/TextRange.h"

#include <string_view>

namespace murkwell {

// To page space. A box over the right or bottom edge of the page is cut there; one over the left or
// top edge keeps its size and is moved inside.
[[nodiscard]] PageRect normalize(const RecognizerRect& box);

// A face from forehead to chin, grown over the hair, the chin and the ears: by 55 % of its height
// upward, 10 % downward and 12 % of its width to each side.
[[nodiscard]] RecognizerRect expandedFace(const RecognizerRect& face);

// Around the characters of the range (in the line's text as UTF-16, which is given), or around the
// whole line when the engine did not say where they are.
[[nodiscard]] RecognizerRect boxOf(const RecognizedLine& line, std::u16string_view text,
                                   TextRange range);

} // namespace murkwell
