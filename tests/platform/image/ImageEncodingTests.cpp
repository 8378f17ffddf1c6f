#include "platform/image/GifEncoding.h"
#include "tests/platform/image/Pictures.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <set>

namespace murkwell {
namespace {

using vips::VImage;

Bytes encoded(const BitmapRef& picture, const ContentType& type,
              std::optional<double> quality = std::nullopt) {
    ImageCodecVips codec;
    return codec.encode(*picture, type, quality).value_or(Bytes());
}

BitmapRef colourful(int width, int height) {
    return painted(width, height, [&](int x, int y) {
        return Rgba{static_cast<std::uint8_t>(x * 255 / width),
                    static_cast<std::uint8_t>(y * 255 / height),
                    static_cast<std::uint8_t>((x * y) % 256), 255};
    });
}

BitmapRef translucent(int width, int height) {
    return painted(width, height, [&](int x, int y) {
        const int alpha = x * 255 / width;
        return Rgba{static_cast<std::uint8_t>(alpha * y / height), static_cast<std::uint8_t>(alpha),
                    0, static_cast<std::uint8_t>(alpha)};
    });
}

bool contains(const Bytes& file, std::string_view text) {
    const Bytes wanted = bytes(text);
    return std::search(file.begin(), file.end(), wanted.begin(), wanted.end()) != file.end();
}

TEST(ImageEncoding, EveryTypeThatIsOfferedIsWrittenAndRecognised) {
    ImageCodecVips codec;
    const auto types = codec.encodableTypes();
    EXPECT_THAT(types, testing::IsSupersetOf({"public.png", "public.jpeg", "public.tiff",
                                              "com.microsoft.bmp", "com.compuserve.gif"}));
    for (const std::string& identifier : types) {
        const auto file = encoded(colourful(40, 30), *ContentType::fromIdentifier(identifier));
        const auto back = codec.decode(file);
        ASSERT_TRUE(back) << identifier;
        EXPECT_EQ(back->typeIdentifier, identifier);
        EXPECT_EQ(back->bitmap->width(), 40) << identifier;
        EXPECT_EQ(back->bitmap->height(), 30) << identifier;
    }
    for (const ContentType& type : {ContentType::pdf, ContentType::avif, ContentType::heif}) {
        EXPECT_TRUE(encoded(colourful(4, 4), type).empty()) << type.identifier();
    }
}

TEST(ImageEncoding, LosslessFormatsKeepEveryPixel) {
    for (const ContentType& type : {ContentType::png, ContentType::tiff, ContentType::bmp}) {
        for (const auto& picture : {colourful(61, 47), colourful(1, 1), translucent(61, 47)}) {
            EXPECT_EQ(distance(decoded(encoded(picture, type)), picture), 0) << type.identifier();
        }
    }
}

TEST(ImageEncoding, AlphaIsDroppedWhenNothingShowsThrough) {
    for (const ContentType& type : {ContentType::png, ContentType::tiff}) {
        EXPECT_EQ(loaded(encoded(colourful(9, 9), type)).bands(), 3) << type.identifier();
        EXPECT_EQ(loaded(encoded(translucent(9, 9), type)).bands(), 4) << type.identifier();
    }
}

TEST(ImageEncoding, NothingButPixelsIsWritten) {
    const Bytes png = encoded(translucent(50, 40), ContentType::png);
    std::vector<std::string> chunks;
    for (std::size_t at = 8; at + 8 <= png.size();) {
        std::size_t length = 0;
        for (std::size_t i = 0; i < 4; ++i) {
            length = length << 8 | std::to_integer<std::size_t>(png[at + i]);
        }
        std::string type;
        for (std::size_t i = 4; i < 8; ++i) {
            type.push_back(static_cast<char>(png[at + i]));
        }
        chunks.push_back(type);
        at += length + 12;
    }
    EXPECT_THAT(std::set(chunks.begin(), chunks.end()),
                testing::ElementsAre("IDAT", "IEND", "IHDR"));
    ASSERT_FALSE(chunks.empty());
    EXPECT_EQ(chunks.back(), "IEND");

    for (const ContentType& type : {ContentType::jpeg, ContentType::tiff, ContentType::gif}) {
        const Bytes file = encoded(colourful(300, 200), type, 0.92);
        for (const char* trace : {"Exif", "http:", "ICC_PROFILE", "acsp", "vips", "NETSCAPE"}) {
            EXPECT_FALSE(contains(file, trace)) << type.identifier() << " " << trace;
        }
        const VImage image = loaded(file);
        for (const char* field : {VIPS_META_EXIF_NAME, VIPS_META_XMP_NAME, VIPS_META_ICC_NAME,
                                  VIPS_META_IPTC_NAME, VIPS_META_IMAGEDESCRIPTION}) {
            EXPECT_EQ(image.get_typeof(field), 0U) << type.identifier() << " " << field;
        }
    }
}

TEST(ImageEncoding, JpegHasFullChromaAndWhitePaper) {
    const Bytes file = encoded(translucent(64, 64), ContentType::jpeg, 0.92);
    EXPECT_STREQ(loaded(file).get_string("jpeg-chroma-subsample"), "4:4:4");
    const auto bitmap = decoded(file);
    ASSERT_TRUE(bitmap);
    EXPECT_GE(bitmap->row(32).front().r, 250);
    EXPECT_EQ(bitmap->row(32).front().a, 255);
    // Single-pixel colours survive: they would not with shared chroma.
    const auto lines = painted(64, 64, [](int x, int) {
        return x % 2 == 0 ? Rgba{255, 0, 0, 255} : Rgba{255, 255, 255, 255};
    });
    EXPECT_LE(distance(decoded(encoded(lines, ContentType::jpeg, 0.92)), lines), 12);
}

TEST(ImageEncoding, QualityIsAFractionOfOne) {
    const auto picture = colourful(200, 200);
    const auto size = [&](double quality) {
        return encoded(picture, ContentType::jpeg, quality).size();
    };
    EXPECT_LT(size(0.3), size(0.92));
    EXPECT_LT(size(0.92), size(1.0));
    EXPECT_GT(size(0.0), 0U);
}

TEST(ImageEncoding, GifIsExactUpTo256Colours) {
    for (const int colours : {1, 2, 3, 4, 5, 16, 17, 128, 129, 255, 256}) {
        // Long enough for the code table to fill up many times; runs and noise in turns.
        std::uint32_t state = 1;
        const auto picture = painted(300, 200, [&](int x, int y) {
            state = state * 1664525 + 1013904223;
            const auto random = static_cast<int>(state >> 16);
            const int i = (y / 10 % 2 == 0 ? random : x / 50) % colours;
            return Rgba{static_cast<std::uint8_t>(i), static_cast<std::uint8_t>(i * 7),
                        static_cast<std::uint8_t>(255 - i), 255};
        });
        const Bytes file = encoded(picture, ContentType::gif);
        EXPECT_EQ(distance(decoded(file), picture), 0) << colours;
    }
}

TEST(ImageEncoding, GifKeepsTransparencyAsAColour) {
    const auto picture = painted(20, 20, [](int x, int y) {
        return x < y ? Rgba{0, 0, 0, 0} : Rgba{static_cast<std::uint8_t>(x), 0, 0, 255};
    });
    EXPECT_EQ(distance(decoded(encoded(picture, ContentType::gif)), picture), 0);
    // What shows through half or more is opaque, the rest is gone.
    const auto half = painted(2, 1, [](int x, int) {
        return x == 0 ? Rgba{64, 0, 0, 128} : Rgba{63, 0, 0, 127};
    });
    const auto back = decoded(encoded(half, ContentType::gif));
    ASSERT_TRUE(back);
    EXPECT_EQ(back->pixels()[0], (Rgba{128, 0, 0, 255}));
    EXPECT_EQ(back->pixels()[1], (Rgba{0, 0, 0, 0}));
}

TEST(ImageEncoding, GifOfMoreColoursIsNearlyRight) {
    const auto picture = colourful(64, 64);
    EXPECT_FALSE(encodeGifExactly(*picture));
    EXPECT_LE(distance(decoded(encoded(picture, ContentType::gif)), picture), 80);
}

} // namespace
} // namespace murkwell
