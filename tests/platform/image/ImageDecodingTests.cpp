#include "tests/platform/image/Pictures.h"

#include "platform/image/AlphaArithmetic.h"
#include "platform/image/ImageSignature.h"
#include "platform/image/JpegScans.h"

#include <gtest/gtest.h>

namespace murkwell {
namespace {

using namespace std::string_view_literals;
using vips::VImage;

std::vector<Rgba> pixelsOf(const BitmapRef& bitmap) {
    return bitmap ? std::vector<Rgba>(bitmap->pixels().begin(), bitmap->pixels().end())
                  : std::vector<Rgba>();
}

TEST(ImageSignature, NamesTheTypeByTheFirstBytes) {
    struct Case {
        std::string_view start;
        std::optional<ContentType> type;
    };
    const Case cases[] = {
        {"\x89PNG\r\n\x1a\n"sv, ContentType::png},
        {"\x89PNG\n\x1a\n"sv, std::nullopt}, // line ends were converted
        {"\xff\xd8\xff\xe0"sv, ContentType::jpeg},
        {"II*\0"sv, ContentType::tiff},
        {"MM\0*"sv, ContentType::tiff},
        {"MM\0+"sv, ContentType::tiff},
        {"GIF87a"sv, ContentType::gif},
        {"GIF88a"sv, std::nullopt},
        {"BM"sv, ContentType::bmp},
        {"B"sv, std::nullopt},
        {""sv, std::nullopt},
        {"\0\0\0\x14"
         "ftypheic\0\0\0\0mif1"sv,
         ContentType::heic},
        {"\0\0\0\x14"
         "ftypmif1\0\0\0\0heic"sv,
         ContentType::heif},
        {"\0\0\0\x14"
         "ftypavif\0\0\0\0mif1"sv,
         ContentType::avif},
        {"\0\0\0\x14"
         "ftypXXXX\0\0\0\0heix"sv,
         ContentType::heic},
        {"\0\0\0\x10"
         "ftypXXXX\0\0\0\0heix"sv,
         std::nullopt}, // behind the box
        {"\0\0\0\x14"
         "ftypisom\0\0\0\0mp42"sv,
         std::nullopt},
        {"\0\0\0\x14"
         "moovheic\0\0\0\0mif1"sv,
         std::nullopt},
        {"%PDF-1.7"sv, std::nullopt},
        {"<svg xmlns="sv, std::nullopt},
        {"push graphic-context"sv, std::nullopt},
    };
    for (const Case& c : cases) {
        const Bytes file = bytes(c.start);
        const auto signature = imageSignature(file);
        EXPECT_EQ(signature ? std::optional(signature->type) : std::nullopt, c.type) << c.start;
    }
}

TEST(ImageDecoding, FormatsThatWeDoNotNameAreNone) {
    const VImage image = gradient(8, 8, 3);
    EXPECT_FALSE(decoded(saved(image, ".webp")));
}

TEST(ImageDecoding, LosslessFilesComeOutExactly) {
    const auto expected = painted(37, 23, [](int x, int y) {
        const int r = x * 251 / 37;
        const int g = y * 251 / 23;
        return Rgba{static_cast<std::uint8_t>(r), static_cast<std::uint8_t>(g),
                    static_cast<std::uint8_t>((x + y) * 97 % 256), 255};
    });
    const VImage image = gradient(37, 23, 3);
    const VImage deep =
        (image * 257)
            .cast(VIPS_FORMAT_USHORT)
            .copy(VImage::option()->set("interpretation", VIPS_INTERPRETATION_RGB16));
    const std::pair<const char*, Bytes> files[] = {
        {"png", saved(image, ".png")},
        {"interlaced png", saved(image, ".png", VImage::option()->set("interlace", true))},
        {"16-bit png", saved(deep, ".png")},
        {"tiff", saved(image, ".tif")},
        {"16-bit tiff", saved(deep, ".tif")},
        {"lzw tiff",
         saved(image, ".tif",
               VImage::option()->set("compression", VIPS_FOREIGN_TIFF_COMPRESSION_LZW))},
        {"tiled tiff",
         saved(image, ".tif",
               VImage::option()->set("tile", true)->set("tile_width", 16)->set("tile_height", 16))},
        {"big tiff", saved(image, ".tif", VImage::option()->set("bigtiff", true))},
    };
    for (const auto& [name, file] : files) {
        EXPECT_EQ(distance(decoded(file), expected), 0) << name;
    }
}

TEST(ImageDecoding, GreyAndAlphaBecomePremultipliedRgba) {
    const std::vector<Rgba> grey{{0, 0, 0, 255}, {200, 200, 200, 255}};
    EXPECT_EQ(pixelsOf(decoded(saved(rgbImage(2, 1, {0, 200}), ".png"))), grey);
    EXPECT_EQ(pixelsOf(decoded(saved(rgbImage(2, 1, {0, 200}), ".tif"))), grey);

    const std::vector<Rgba> greyAlpha{{0, 0, 0, 0}, {100, 100, 100, 128}};
    EXPECT_EQ(pixelsOf(decoded(saved(rgbImage(2, 1, {90, 0, 200, 128}), ".png"))), greyAlpha);

    const std::vector<Rgba> colour{{1, 0, 0, 1}, {100, 50, 128, 128}};
    const VImage straightColour = rgbImage(2, 1, {255, 0, 0, 1, 200, 100, 255, 128});
    EXPECT_EQ(pixelsOf(decoded(saved(straightColour, ".png"))), colour);
    EXPECT_EQ(pixelsOf(decoded(saved(straightColour, ".tif"))), colour);
}

TEST(ImageDecoding, SixteenBitAlphaIsScaledNotClipped) {
    const VImage image =
        (rgbImage(2, 1, {255, 0, 0, 51, 200, 100, 255, 255}) * 257)
            .cast(VIPS_FORMAT_USHORT)
            .copy(VImage::option()->set("interpretation", VIPS_INTERPRETATION_RGB16));
    const std::vector<Rgba> expected{{51, 0, 0, 51}, {200, 100, 255, 255}};
    EXPECT_EQ(pixelsOf(decoded(saved(image, ".png"))), expected);
}

TEST(ImageDecoding, AlphaThatTiffHoldsPremultipliedIsNotAppliedTwice) {
    const VImage image = rgbImage(2, 1, {200, 100, 40, 128, 10, 20, 30, 255});
    const Bytes file = saved(image, ".tif", VImage::option()->set("premultiply", true));
    const auto bitmap = decoded(file);
    ASSERT_TRUE(bitmap);
    EXPECT_NEAR(bitmap->pixels()[0].r, 100, 1);
    EXPECT_NEAR(bitmap->pixels()[0].b, 20, 1);
    EXPECT_EQ(bitmap->pixels()[0].a, 128);
}

TEST(ImageDecoding, PalettesAndOneBitPicturesKeepTheirColours) {
    const VImage two = rgbImage(3, 1, {255, 0, 255});
    const std::vector<Rgba> expected{{255, 255, 255, 255}, {0, 0, 0, 255}, {255, 255, 255, 255}};
    EXPECT_EQ(pixelsOf(decoded(saved(two, ".png", VImage::option()->set("bitdepth", 1)))),
              expected);
    EXPECT_EQ(pixelsOf(decoded(saved(two, ".tif", VImage::option()->set("bitdepth", 1)))),
              expected);
    const VImage colours = rgbImage(2, 1, {250, 10, 20, 30, 40, 50});
    const std::vector<Rgba> palette{{250, 10, 20, 255}, {30, 40, 50, 255}};
    EXPECT_EQ(pixelsOf(decoded(saved(colours, ".png", VImage::option()->set("palette", true)))),
              palette);
}

TEST(ImageDecoding, OrientationTagsAreIgnored) {
    VImage image = gradient(48, 16, 3).copy();
    image.set("orientation", 6);
    for (const char* suffix : {".jpg", ".tif"}) {
        const auto bitmap = decoded(saved(image, suffix));
        ASSERT_TRUE(bitmap) << suffix;
        EXPECT_EQ(bitmap->width(), 48) << suffix;
        EXPECT_EQ(bitmap->height(), 16) << suffix;
    }
}

TEST(ImageDecoding, OnlyTheFirstPictureIsReadAndTheOthersAreCounted) {
    ImageCodecVips codec;
    for (const int count : {1, 2, 3}) {
        std::vector<std::uint8_t> samples;
        for (int i = 0; i < 3 * count; ++i) {
            samples.push_back(static_cast<std::uint8_t>(10 * i + 10));
        }
        VImage pages = rgbImage(1, count, samples).copy();
        pages.set("page-height", 1);
        for (const char* suffix : {".tif", ".gif"}) {
            const auto image = codec.decode(saved(pages, suffix));
            ASSERT_TRUE(image) << suffix;
            EXPECT_EQ(pixelsOf(image->bitmap), (std::vector<Rgba>{{10, 20, 30, 255}})) << suffix;
            EXPECT_EQ(image->pictureCount, static_cast<std::size_t>(count)) << suffix;
        }
    }
}

// Without any colour table the decoder would make colours up.
TEST(ImageDecoding, GifWithoutColoursIsNone) {
    const Bytes frame = bytes({0x2c, 0, 0, 0, 0, 1, 0, 1, 0, 0, 2, 2, 0x4c, 1, 0, 0x3b});
    const Bytes table = bytes({7, 8, 9, 4, 5, 6});
    Bytes file = bytes("GIF89a");
    Bytes screen = bytes({1, 0, 1, 0, 0, 0, 0});
    file.insert(file.end(), screen.begin(), screen.end());
    Bytes without = file;
    without.insert(without.end(), frame.begin(), frame.end());
    EXPECT_FALSE(decoded(without));

    Bytes with = file;
    with[10] = std::byte{0x80};
    with.insert(with.end(), table.begin(), table.end());
    with.insert(with.end(), frame.begin(), frame.end());
    EXPECT_TRUE(decoded(with));
}

TEST(JpegScans, CountsTheFirstPictureOnly) {
    const VImage image = gradient(64, 64, 3);
    const Bytes baseline = saved(image, ".jpg");
    EXPECT_EQ(jpegScanCount(baseline), 1);
    const Bytes progressive = saved(image, ".jpg", VImage::option()->set("interlace", true));
    EXPECT_GT(jpegScanCount(progressive), 5);
    Bytes both = baseline;
    both.insert(both.end(), progressive.begin(), progressive.end());
    EXPECT_EQ(jpegScanCount(both), 1);
    for (std::size_t size = 0; size < progressive.size(); ++size) {
        EXPECT_LE(jpegScanCount(std::span(progressive).first(size)), 20);
    }
}

TEST(AlphaArithmetic, StraightAndBackGivesEveryPremultipliedColour) {
    for (int alpha = 0; alpha <= 255; ++alpha) {
        for (int value = 0; value <= alpha; ++value) {
            const auto v = static_cast<std::uint8_t>(value);
            const Rgba pixel{v, 0, v, static_cast<std::uint8_t>(alpha)};
            ASSERT_EQ(premultiplied(straight(pixel)), pixel) << value << " of " << alpha;
        }
    }
}

} // namespace
} // namespace murkwell
