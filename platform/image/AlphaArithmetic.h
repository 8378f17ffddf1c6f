// Between premultiplied alpha, which bitmaps hold, and straight alpha, which files hold.
#pragma once

#include "core/Bitmap.h"

#include <algorithm>
#include <cstdint>

namespace murkwell {

[[nodiscard]] inline bool isOpaque(const Bitmap& picture) {
    return std::ranges::all_of(picture.pixels(), [](const Rgba& pixel) { return pixel.a == 255; });
}

[[nodiscard]] constexpr std::uint8_t timesAlpha(std::uint8_t value, std::uint8_t alpha) {
    return static_cast<std::uint8_t>((value * alpha + 127) / 255);
}

[[nodiscard]] constexpr Rgba premultiplied(Rgba straight) {
    const std::uint8_t a = straight.a;
    return {timesAlpha(straight.r, a), timesAlpha(straight.g, a), timesAlpha(straight.b, a), a};
}

// The nearest straight colour; black where nothing is to be seen.
[[nodiscard]] constexpr Rgba straight(Rgba premultiplied) {
    const int a = premultiplied.a;
    if (a == 255 || a == 0) {
        return a == 0 ? Rgba{0, 0, 0, 0} : premultiplied;
    }
    const auto divided = [a](std::uint8_t value) {
        return static_cast<std::uint8_t>(std::min(255, (value * 255 + a / 2) / a));
    };
    return {divided(premultiplied.r), divided(premultiplied.g), divided(premultiplied.b),
            premultiplied.a};
}

[[nodiscard]] constexpr Rgba overWhite(Rgba premultiplied) {
    const auto flattened = [a = premultiplied.a](std::uint8_t value) {
        return static_cast<std::uint8_t>(std::min(255, value + 255 - a));
    };
    return {flattened(premultiplied.r), flattened(premultiplied.g), flattened(premultiplied.b),
            255};
}

} // namespace murkwell
