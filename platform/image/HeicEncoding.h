// Writes HEIC with libheif itself: through libvips its encoder takes four times as long.
#pragma once

#include "core/Bitmap.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace murkwell {

// Whether libheif has an HEVC encoder, which is not so everywhere.
[[nodiscard]] bool canEncodeHeic();

// Quality from 0 to 1; alpha is kept unless every pixel is opaque. None on failure. May throw
// std::bad_alloc.
[[nodiscard]] std::optional<std::vector<std::byte>> encodeHeic(const Bitmap& picture,
                                                               double quality);

} // namespace murkwell
