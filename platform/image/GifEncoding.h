// Writes GIF without loss where that is possible, which a quantiser does not see to.
#pragma once

#include "core/Bitmap.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace murkwell {

// One frame with exactly the picture's colours. Pixels of less than half opacity become
// transparent, others opaque. None when the colours, transparency included, are more than 256 or a
// side is longer than 65535. May throw std::bad_alloc.
[[nodiscard]] std::optional<std::vector<std::byte>> encodeGifExactly(const Bitmap& picture);

} // namespace murkwell
