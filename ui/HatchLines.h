// The diagonal lines behind the page. Pure arithmetic, in points.
#pragma once

#include <vector>

namespace murkwell::HatchLines {

inline constexpr double spacing = 12; // horizontally
inline constexpr double width = 1.5;
inline constexpr double opacity = 0.05; // of mid grey

// Where the lines meet the top edge of a frame, prolonged to the left: each runs from (x, 0) to
// (x + height, height).
[[nodiscard]] inline std::vector<double> starts(double frameWidth, double frameHeight) {
    std::vector<double> all;
    for (double x = -frameHeight; x < frameWidth; x += spacing) {
        all.push_back(x);
    }
    return all;
}

} // namespace murkwell::HatchLines
