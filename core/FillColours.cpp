#include "core/FillColours.h"

#include <algorithm>

namespace murkwell {
namespace {

Rgba grey(std::size_t level) {
    const auto value = static_cast<std::uint8_t>(level);
    return {value, value, value, 255};
}

int squaredDistance(Rgba a, Rgba b) {
    const auto squared = [](int difference) { return difference * difference; };
    return squared(a.r - b.r) + squared(a.g - b.g) + squared(a.b - b.b);
}

// No more than there is room for, the darkest and the lightest first of all.
std::vector<Rgba> evenlySpread(const std::vector<Rgba>& greys, std::size_t room) {
    if (greys.size() <= room) {
        return greys;
    }
    std::vector<Rgba> chosen;
    for (std::size_t i = 0; i < room; ++i) {
        chosen.push_back(greys[i * (greys.size() - 1) / std::max<std::size_t>(room - 1, 1)]);
    }
    return chosen;
}

} // namespace

FillColours allGreys() {
    FillColours colours;
    for (std::size_t level = 0; level < colours.size(); ++level) {
        colours[level] = grey(level);
    }
    return colours;
}

FillColours fillColoursBeside(std::span<const Rgba> outside,
                              std::span<const std::uint8_t> wantedLevels, std::size_t mostColours) {
    if (outside.size() > mostColours) {
        return allGreys();
    }
    std::vector<Rgba> missing;
    for (const std::uint8_t level : wantedLevels) {
        if (std::ranges::find(outside, grey(level)) == outside.end()) {
            missing.push_back(grey(level));
        }
    }
    std::vector<Rgba> available = evenlySpread(missing, mostColours - outside.size());
    std::ranges::copy_if(outside, std::back_inserter(available),
                         [](Rgba colour) { return colour.a == 255; });
    FillColours colours = allGreys();
    for (Rgba& colour : colours) {
        const auto nearest = std::ranges::min_element(
            available, {}, [&](Rgba other) { return squaredDistance(colour, other); });
        colour = nearest == available.end() ? colour : *nearest;
    }
    return colours;
}

} // namespace murkwell
