#include "ui/NoisePreview.h"

#include <cmath>

namespace murkwell::NoisePreview {

double grey(std::uint64_t column, std::uint64_t row) {
    // A spatial hash, scrambled until neighbours have nothing in common. All products wrap.
    const std::uint64_t hash = (column * 19349663U) ^ (row * 73856093U);
    std::uint32_t scrambled =
        static_cast<std::uint32_t>(hash >> 13U) ^ static_cast<std::uint32_t>(hash);
    scrambled *= 1274126177U;
    return (scrambled % 55) / 100.0 + 0.25;
}

int cells(double points) {
    return points > 0 ? static_cast<int>(std::ceil(points / cell)) : 0;
}

} // namespace murkwell::NoisePreview
