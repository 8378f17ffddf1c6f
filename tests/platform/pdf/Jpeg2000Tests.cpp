#include "platform/pdf/Jpeg2000.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace murkwell {
namespace {

std::string number(std::uint64_t value, int bytes) {
    std::string text;
    for (int i = bytes - 1; i >= 0; --i) {
        text += static_cast<char>(value >> 8 * i);
    }
    return text;
}

// The beginning of a codestream.
std::string header(std::uint32_t width, std::uint32_t height, std::uint32_t components,
                   std::uint32_t tile) {
    return "\xff\x4f\xff\x51" + number(38 + 3 * components, 2) + number(0, 2) + number(width, 4) +
           number(height, 4) + number(0, 8) + number(tile, 4) + number(tile, 4) + number(0, 8) +
           number(components, 2);
}

std::optional<Jpeg2000Cost> cost(const std::string& file) {
    return costOfJpeg2000(std::as_bytes(std::span(file)));
}

TEST(Jpeg2000, CostsWhatItsHeaderAsksFor) {
    constexpr double gigabyte = 1e9;
    struct Case {
        const char* what;
        std::string file;
        double picture;
        double least; // of decoding
        double most;
    };
    for (const Case& c : std::vector<Case>{
             {"a scan at 600 dpi", header(4961, 7016, 3, 8000), 0.1044, 0.4, 0.6},
             {"behind the boxes of a file", "a box" + header(1000, 1000, 1, 1000), 0.001, 0.004,
              0.01},
             {"larger than anything", header(0xffffffff, 0xffffffff, 16384, 1), 1e9, 1e9, 2e9},
             {"small, in very many tiles of very many components", header(256, 256, 16384, 1),
              1.0738, 1000, 2000},
             {"no tiles", header(100, 100, 1, 0), 0.00001, 0.00001, 0.0001},
             {"the dearest of two", header(1, 1, 1, 1) + header(1000, 1000, 3, 1000), 0.003, 0.01,
              0.03},
         }) {
        const auto found = cost(c.file);
        ASSERT_TRUE(found) << c.what;
        EXPECT_NEAR(static_cast<double>(found->picture) / gigabyte, c.picture, c.picture / 100)
            << c.what;
        EXPECT_GE(static_cast<double>(found->decoding) / gigabyte, c.least) << c.what;
        EXPECT_LE(static_cast<double>(found->decoding) / gigabyte, c.most) << c.what;
    }
    EXPECT_FALSE(cost(""));
    EXPECT_FALSE(cost("no codestream"));
    const std::string whole = header(9, 9, 1, 9);
    for (std::size_t length = 0; length < whole.size(); ++length) {
        EXPECT_FALSE(cost(whole.substr(0, length))) << length;
    }
}

} // namespace
} // namespace murkwell
