#include "platform/image/BmpFile.h"

#include "tests/platform/image/Pictures.h"

#include <gtest/gtest.h>

namespace murkwell {
namespace {

constexpr Rgba red{255, 0, 0, 255};
constexpr Rgba green{0, 255, 0, 255};
constexpr Rgba blue{0, 0, 255, 255};
constexpr Rgba white{255, 255, 255, 255};

Bytes joined(std::initializer_list<Bytes> parts) {
    Bytes result;
    for (const Bytes& part : parts) {
        result.insert(result.end(), part.begin(), part.end());
    }
    return result;
}

Bytes number(std::int64_t value, int size) {
    Bytes result;
    for (int i = 0; i < size; ++i) {
        result.push_back(static_cast<std::byte>(i < 8 ? value >> (8 * i) : 0));
    }
    return result;
}

// Red, green, blue and white, as the palette of every case that has one.
const Bytes palette = bytes({0, 0, 255, 0, 0, 255, 0, 0, 255, 0, 0, 0, 255, 255, 255, 0});

Bytes file(const Bytes& header, const Bytes& behindHeader, const Bytes& pixels) {
    const auto pixelStart = 14 + header.size() + behindHeader.size();
    return joined({bytes("BM"), number(0, 8), number(static_cast<std::int64_t>(pixelStart), 4),
                   header, behindHeader, pixels});
}

Bytes infoHeader(int width, int height, int bits, int compression, int size = 40) {
    return joined({number(size, 4), number(width, 4), number(height, 4), number(1, 2),
                   number(bits, 2), number(compression, 4), number(0, 20)});
}

// A picture of two by two pixels, blue and white below red and green.
TEST(BmpFile, EveryFormGivesTheSamePicture) {
    const std::vector<Rgba> expected{red, green, blue, white};
    const Bytes masks565 = bytes({0, 0xf8, 0, 0, 0xe0, 7, 0, 0, 0x1f, 0, 0, 0});
    const Bytes corePalette = bytes({0, 0, 255, 0, 255, 0, 255, 0, 0, 255, 255, 255});
    const Bytes masks8888 = bytes({0, 0, 0, 0xff, 0, 0, 0xff, 0, 0, 0xff, 0, 0});
    const std::pair<const char*, Bytes> cases[] = {
        {"2 bits", file(infoHeader(2, 2, 2, 0), palette, bytes({0xb0, 0, 0, 0, 0x10, 0, 0, 0}))},
        {"4 bits", file(infoHeader(2, 2, 4, 0), palette, bytes({0x23, 0, 0, 0, 0x01, 0, 0, 0}))},
        {"8 bits", file(infoHeader(2, 2, 8, 0), palette, bytes({2, 3, 0, 0, 0, 1, 0, 0}))},
        {"top down", file(infoHeader(2, -2, 8, 0), palette, bytes({0, 1, 0, 0, 2, 3, 0, 0}))},
        {"without last padding", file(infoHeader(2, 2, 8, 0), palette, bytes({2, 3, 0, 0, 0, 1}))},
        {"OS/2",
         file(joined({number(12, 4), number(2, 2), number(2, 2), number(1, 2), number(8, 2)}),
              corePalette, bytes({2, 3, 0, 0, 0, 1, 0, 0}))},
        {"5-5-5",
         file(infoHeader(2, 2, 16, 0), {}, bytes({0x1f, 0, 0xff, 0x7f, 0, 0x7c, 0xe0, 3}))},
        {"5-6-5",
         file(infoHeader(2, 2, 16, 3), masks565, bytes({0x1f, 0, 0xff, 0xff, 0, 0xf8, 0xe0, 7}))},
        {"24 bits", file(infoHeader(2, 2, 24, 0), {},
                         bytes({255, 0, 0, 255, 255, 255, 0, 0, 0, 0, 255, 0, 255, 0, 0, 0}))},
        {"32 bits, the fourth byte unused",
         file(infoHeader(2, 2, 32, 0), {},
              bytes({255, 0, 0, 9, 255, 255, 255, 9, 0, 0, 255, 9, 0, 255, 0, 9}))},
        {"32 bits, red highest",
         file(infoHeader(2, 2, 32, 3), masks8888,
              bytes({0, 255, 0, 0, 0, 255, 255, 255, 0, 0, 0, 255, 0, 0, 255, 0}))},
        {"8-bit runs",
         file(infoHeader(2, 2, 8, 1), palette, bytes({1, 2, 1, 3, 0, 0, 1, 0, 1, 1, 0, 1}))},
        {"4-bit runs",
         file(infoHeader(2, 2, 4, 2), palette, bytes({2, 0x23, 0, 0, 2, 0x01, 0, 1}))},
        {"literal run",
         file(infoHeader(2, 2, 8, 1), palette, bytes({1, 2, 1, 3, 0, 0, 0, 3, 0, 1, 1, 0, 0, 1}))},
    };
    for (const auto& [name, data] : cases) {
        const auto bitmap = decodeBmp(data);
        ASSERT_TRUE(bitmap) << name;
        EXPECT_EQ(std::vector<Rgba>(bitmap->pixels().begin(), bitmap->pixels().end()), expected)
            << name;
    }
}

TEST(BmpFile, SkippedPixelsHaveTheFirstColour) {
    // One blue pixel, then two to the right and one up, a green one.
    const auto bitmap =
        decodeBmp(file(infoHeader(4, 2, 8, 1), palette, bytes({1, 2, 0, 2, 2, 1, 1, 1, 0, 1})));
    ASSERT_TRUE(bitmap);
    EXPECT_EQ(std::vector<Rgba>(bitmap->pixels().begin(), bitmap->pixels().end()),
              (std::vector<Rgba>{red, red, red, green, blue, red, red, red}));
}

TEST(BmpFile, AlphaOfNothingAnywhereMeansNoAlpha) {
    const Bytes header =
        joined({infoHeader(1, 1, 32, 3, 56), bytes({0, 0, 0xff, 0, 0, 0xff, 0, 0, 0xff, 0, 0, 0}),
                bytes({0, 0, 0, 0xff})});
    const auto solid = decodeBmp(file(header, {}, bytes({10, 20, 30, 0})));
    ASSERT_TRUE(solid);
    EXPECT_EQ(solid->pixels()[0], (Rgba{30, 20, 10, 255}));
    const auto translucent = decodeBmp(file(header, {}, bytes({0, 0, 255, 128})));
    ASSERT_TRUE(translucent);
    EXPECT_EQ(translucent->pixels()[0], (Rgba{128, 0, 0, 128}));
}

TEST(BmpFile, NoneForHeadersThatCannotBe) {
    const Bytes pixels(64, std::byte{1});
    const std::pair<const char*, Bytes> cases[] = {
        {"no pixels", file(infoHeader(2, 2, 24, 0), {}, {})},
        {"less than a row", file(infoHeader(30, 30, 24, 0), {}, pixels)},
        {"zero width", file(infoHeader(0, 2, 24, 0), {}, pixels)},
        {"negative width", file(infoHeader(-2, 2, 24, 0), {}, pixels)},
        {"most negative height", file(infoHeader(1, INT32_MIN, 8, 0), palette, pixels)},
        {"absurd size", file(infoHeader(65500, 65500, 24, 0), {}, pixels)},
        {"absurd runs", file(infoHeader(65500, 65500, 8, 1), palette, pixels)},
        {"bits of no form", file(infoHeader(2, 2, 7, 0), {}, pixels)},
        {"JPEG inside", file(infoHeader(2, 2, 24, 4), {}, pixels)},
        {"top-down runs", file(infoHeader(2, -2, 8, 1), palette, pixels)},
        {"header of no size", file(infoHeader(2, 2, 24, 0, 5), {}, pixels)},
    };
    for (const auto& [name, data] : cases) {
        EXPECT_FALSE(decodeBmp(data)) << name;
    }
}

TEST(BmpFile, WrittenBytesAreThoseOfTheFormat) {
    const auto picture = painted(2, 2, [](int x, int y) {
        return y == 0 ? (x == 0 ? red : green) : (x == 0 ? blue : white);
    });
    const Bytes pixels = bytes({255, 0, 0, 255, 255, 255, 0, 0, 0, 0, 255, 0, 255, 0, 0, 0});
    const Bytes header = joined({number(40, 4), number(2, 4), number(2, 4), number(1, 2),
                                 number(24, 2), number(0, 4), number(16, 4), number(0, 16)});
    EXPECT_EQ(encodeBmp(*picture),
              joined({bytes("BM"), number(70, 4), number(0, 4), number(54, 4), header, pixels}));
}

TEST(BmpFile, WrittenPicturesComeBack) {
    for (const int width : {1, 2, 3, 4, 5}) {
        const auto picture = painted(width, 3, [](int x, int y) {
            return Rgba{static_cast<std::uint8_t>(x * 5), static_cast<std::uint8_t>(y * 8), 7,
                        static_cast<std::uint8_t>(x + 100)};
        });
        EXPECT_EQ(distance(decodeBmp(encodeBmp(*picture)), picture), 0) << width;
    }
}

} // namespace
} // namespace murkwell
