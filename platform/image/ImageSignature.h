// Tells from its first bytes what a picture file is.
#pragma once

#include "io/ContentType.h"

#include <cstddef>
#include <optional>
#include <span>

namespace murkwell {

// One per decoder; the HEIF family shares one.
enum class ImageFormat { png, jpeg, tiff, bmp, gif, heif };

struct ImageSignature {
    ImageFormat format;
    ContentType type;
};

// None when the bytes begin like no picture that is ever decoded.
[[nodiscard]] std::optional<ImageSignature> imageSignature(std::span<const std::byte> file);

} // namespace murkwell
