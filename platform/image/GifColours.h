// Whether a GIF says what its colours are.
#pragma once

#include <cstddef>
#include <span>

namespace murkwell {

// False when the first frame has neither a colour table of its own nor the file's: decoders then
// make colours up. False too when there is no frame.
[[nodiscard]] bool firstGifFrameHasColours(std::span<const std::byte> file);

} // namespace murkwell
