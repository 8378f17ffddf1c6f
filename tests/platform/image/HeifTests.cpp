#include "platform/image/HeicEncoding.h"
#include "platform/image/HeifTransformations.h"
#include "tests/platform/image/Pictures.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace murkwell {
namespace {

using namespace std::string_view_literals;

Bytes box(std::string_view type, const Bytes& content) {
    const std::size_t size = 8 + content.size();
    Bytes result =
        bytes({0, 0, static_cast<unsigned>(size >> 8), static_cast<unsigned>(size & 255)});
    const Bytes name = bytes(type);
    result.insert(result.end(), name.begin(), name.end());
    result.insert(result.end(), content.begin(), content.end());
    return result;
}

Bytes joined(std::initializer_list<Bytes> parts) {
    Bytes result;
    for (const Bytes& part : parts) {
        result.insert(result.end(), part.begin(), part.end());
    }
    return result;
}

Bytes file(const Bytes& properties, const Bytes& outside) {
    const Bytes version = bytes({0, 0, 0, 0});
    return joined(
        {box("ftyp", bytes("heic\0\0\0\0mif1"sv)),
         box("meta",
             joined({version, box("hdlr", bytes("irot imir")),
                     box("iprp", joined({box("ipco", properties), box("ipma", outside)}))})),
         box("mdat", outside)});
}

TEST(HeifTransformations, RotationAndMirroringAreTakenOutInPlace) {
    const Bytes clap = box("clap", bytes({1, 2, 3, 4}));
    const Bytes outside = box("irot", bytes({3})); // data that only looks like a property
    const Bytes before =
        file(joined({box("irot", bytes({1})), clap, box("imir", bytes({1}))}), outside);
    const Bytes after =
        file(joined({box("irot", bytes({0})), clap, box("free", bytes({1}))}), outside);
    EXPECT_EQ(withoutHeifRotation(before), after);
    EXPECT_EQ(withoutHeifRotation(after), after);
}

TEST(HeifTransformations, LongAndOpenEndedSizesAreFollowed) {
    // The property has a 64-bit size, the boxes around it run to the end.
    const Bytes property =
        joined({bytes({0, 0, 0, 1}), bytes("irot"), bytes({0, 0, 0, 0, 0, 0, 0, 17}), bytes({2})});
    const auto openEnded = [](std::string_view type, const Bytes& content) {
        return joined({bytes({0, 0, 0, 0}), bytes(type), content});
    };
    const Bytes whole = openEnded(
        "meta", joined({bytes({0, 0, 0, 0}), openEnded("iprp", openEnded("ipco", property))}));
    Bytes expected = whole;
    expected.back() = std::byte{0};
    EXPECT_EQ(withoutHeifRotation(whole), expected);
}

TEST(HeifTransformations, EveryTruncationIsSafe) {
    const Bytes whole = file(joined({box("irot", bytes({1})), box("imir", bytes({1}))}), {});
    for (std::size_t size = 0; size <= whole.size(); ++size) {
        EXPECT_EQ(withoutHeifRotation(std::span(whole).first(size)).size(), size);
    }
}

BitmapRef twoColours(int width, int height) {
    return painted(width, height, [width](int x, int) {
        return x < width / 2 ? Rgba{200, 30, 30, 255} : Rgba{20, 60, 180, 255};
    });
}

// The picture's box about its bit depths gives way to a transformation of the same size, which is
// then applied to the picture by whoever applies such.
Bytes withTransformation(Bytes heic, std::string_view type, unsigned value) {
    constexpr std::string_view replaced = "pixi";
    const auto at = std::search(heic.begin(), heic.end(), replaced.begin(), replaced.end(),
                                [](std::byte b, char c) { return b == static_cast<std::byte>(c); });
    if (at == heic.end()) {
        return {};
    }
    const Bytes name = bytes(type);
    std::copy(name.begin(), name.end(), at);
    *(at + 4) = static_cast<std::byte>(value);
    return heic;
}

TEST(Heif, PixelsComeOutAsStored) {
    if (!canEncodeHeic()) {
        GTEST_SKIP() << "no HEVC encoder here";
    }
    const auto picture = twoColours(64, 32);
    const auto heic = encodeHeic(*picture, 0.9);
    ASSERT_TRUE(heic);
    ASSERT_LE(distance(decoded(*heic), picture), 40); // chroma is shared between pixels

    const Bytes rotated = withTransformation(*heic, "irot", 1);
    ASSERT_FALSE(rotated.empty());
    EXPECT_EQ(loaded(rotated).width(), 32) << "this test turns nothing";
    EXPECT_EQ(distance(decoded(rotated), decoded(*heic)), 0);

    const Bytes mirrored = withTransformation(*heic, "imir", 1);
    EXPECT_LT(loaded(mirrored).getpoint(0, 16).front(), 60) << "this test mirrors nothing";
    EXPECT_EQ(distance(decoded(mirrored), decoded(*heic)), 0);
}

TEST(Heif, EncodedPictureKeepsSizeColoursAndAlpha) {
    if (!canEncodeHeic()) {
        GTEST_SKIP() << "no HEVC encoder here";
    }
    for (const auto& [width, height] : {std::pair{1, 1}, {31, 17}, {70, 33}}) {
        const auto picture = painted(width, height, [](int, int) { return Rgba{9, 99, 199, 255}; });
        const auto heic = encodeHeic(*picture, 0.9);
        ASSERT_TRUE(heic) << width;
        EXPECT_LE(distance(decoded(*heic), picture), 6) << width;
        EXPECT_EQ(loaded(*heic).bands(), 3) << width;
    }
    const auto half = painted(32, 32, [](int, int) { return Rgba{50, 0, 0, 128}; });
    const auto heic = encodeHeic(*half, 0.9);
    ASSERT_TRUE(heic);
    EXPECT_LE(distance(decoded(*heic), half), 6);
}

} // namespace
} // namespace murkwell
