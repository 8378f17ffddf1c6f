// How a noise box looks on the screen: a fixed pattern of grey squares that moves with the box.
// What an export burns in is random and made by the engine.
#pragma once

#include <cstdint>

namespace murkwell::NoisePreview {

// Side of a square, in points. The first one lies at the box's top-left corner; those of the last
// row and column end at the box's edge.
inline constexpr int cell = 4;

// Grey level of a square, 0.25 to 0.79 of white in sRGB.
[[nodiscard]] double grey(std::uint64_t column, std::uint64_t row);

// Squares along a side of so many points; none when it is not positive.
[[nodiscard]] int cells(double points);

} // namespace murkwell::NoisePreview
