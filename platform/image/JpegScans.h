// How much work a progressive JPEG asks for.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace murkwell {

// The scans of the first picture in the file; thumbnails, and what stands behind the picture, do
// not count. As many as there are up to where the bytes stop being a JPEG.
[[nodiscard]] std::int64_t jpegScanCount(std::span<const std::byte> file);

} // namespace murkwell
