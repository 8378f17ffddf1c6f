// Colour management: from whatever a file holds to 8-bit sRGB.
#pragma once

#include <vips/vips8>

namespace murkwell {

// 8-bit sRGB with 3 bands, or 4 with straight alpha. The embedded profile is applied; one that is
// broken or of the wrong kind is passed over. CMYK without a profile goes by the one that is built
// into libvips. Throws vips::VError.
[[nodiscard]] vips::VImage toSrgb(vips::VImage image);

} // namespace murkwell
