// What boxes are painted with in a picture that can only have so many colours.
#pragma once

#include "core/Bitmap.h"

#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace murkwell {

// By the level of grey that is meant, from 0, of black bars, to 255, of white ones.
using FillColours = std::array<Rgba, 256>;

// Every level as the grey that it is.
[[nodiscard]] FillColours allGreys();

// For a picture with these colours outside of its boxes: as many of the wanted levels as there is
// room for, evenly spread, are the greys that they are. All others are the nearest opaque colour
// among those and the ones outside. What lies under the boxes must not be among the latter: it
// would show in the choice. All greys when there are more colours outside than the picture can
// have. May throw std::bad_alloc.
[[nodiscard]] FillColours fillColoursBeside(std::span<const Rgba> outside,
                                            std::span<const std::uint8_t> wantedLevels,
                                            std::size_t mostColours);

} // namespace murkwell
