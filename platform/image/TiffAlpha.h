// The one thing about a TIFF's alpha that libvips does not tell.
#pragma once

#include <cstddef>
#include <span>

namespace murkwell {

// Whether the colours of the first picture are multiplied by its alpha ("associated alpha" in
// TIFF 6.0, section 18). False when the bytes do not say so.
[[nodiscard]] bool tiffAlphaIsPremultiplied(std::span<const std::byte> file);

} // namespace murkwell
