// Makes a HEIF picture come out as it is stored.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace murkwell {

// A copy of the file in which every rotation is by nothing and every mirroring is a free box. The
// decoder offers only all transformations or none, and the clean aperture has to stay: it hides
// what the coding added at the edges. Bytes that are no boxes are copied as they are. May throw
// std::bad_alloc.
[[nodiscard]] std::vector<std::byte> withoutHeifRotation(std::span<const std::byte> file);

} // namespace murkwell
