// Windows and OS/2 bitmap files: small enough a format to need no library, and the only one that
// would bring in a decoder of a hundred others.
#pragma once

#include "core/Bitmap.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace murkwell {

// All uncompressed and run-length forms of 1 to 32 bits per pixel, top-down ones too. Rows that the
// file lacks are opaque black. Null when the header is none of these, when the first row is missing
// or when Bitmap refuses the size.
[[nodiscard]] std::shared_ptr<Bitmap> decodeBmp(std::span<const std::byte> file);

// 24 bits per pixel; 32 with straight alpha when a pixel is not opaque. May throw std::bad_alloc.
[[nodiscard]] std::vector<std::byte> encodeBmp(const Bitmap& picture);

} // namespace murkwell
