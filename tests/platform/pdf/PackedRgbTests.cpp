#include "platform/pdf/PackedRgb.h"

#include <gtest/gtest.h>
#include <vector>

namespace murkwell {
namespace {

TEST(ExpandPackedRgb, EveryPixelOfEveryLength) {
    for (std::size_t length = 0; length < 40; ++length) {
        std::vector<Rgba> pixels(length);
        auto* const packed = reinterpret_cast<std::uint8_t*>(pixels.data());
        for (std::size_t i = 0; i < 3 * length; ++i) {
            packed[i] = static_cast<std::uint8_t>(i + 1);
        }
        expandPackedRgb(pixels);
        for (std::size_t i = 0; i < length; ++i) {
            const auto first = static_cast<std::uint8_t>(3 * i + 1);
            EXPECT_EQ(pixels[i], (Rgba{first, static_cast<std::uint8_t>(first + 1),
                                       static_cast<std::uint8_t>(first + 2), 255}));
        }
    }
}

} // namespace
} // namespace murkwell
