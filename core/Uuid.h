// A random (version 4) universally unique identifier, RFC 4122.
#pragma once

#include <array>
#include <cstdint>

namespace murkwell {

class RandomSource;

struct Uuid {
    std::array<std::uint8_t, 16> bytes{};

    [[nodiscard]] static Uuid random(RandomSource& random);

    auto operator<=>(const Uuid&) const = default;
};

} // namespace murkwell
