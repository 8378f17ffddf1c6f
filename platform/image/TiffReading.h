// TIFF files that libvips refuses or mistakes for something else, read with libtiff alone.
#pragma once

#include "platform/image/TimeLimit.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vips/vips8>

namespace murkwell {

// The first picture of the file as stored, for toSrgb(), with its colour profile. These are planes
// of tiles, samples of widths such as 12 bits, old-style JPEG, and luma with chroma that no JPEG
// codec converts. None when it is none of these: it is for libvips then. `allowedBytes` bounds what
// is held meanwhile and leaves room for a Bitmap.
//
// Throws vips::VError when any part of the picture is missing or cannot be read, when it asks for
// more memory, and when time runs out.
[[nodiscard]] std::optional<vips::VImage> readUncommonTiff(std::span<const std::byte> file,
                                                           std::int64_t allowedBytes,
                                                           const TimeLimit& limit);

} // namespace murkwell
