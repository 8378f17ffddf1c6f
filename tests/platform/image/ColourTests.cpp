#include "tests/platform/image/TiffPictures.h"

#include <gtest/gtest.h>
#include <lcms2.h>
#include <memory>

namespace murkwell {
namespace {

using vips::VImage;
using Profile = std::unique_ptr<void, int (*)(void*)>;

Profile owned(cmsHPROFILE profile) {
    return {profile, cmsCloseProfile};
}

Profile rgbProfile(const cmsCIExyYTRIPLE& primaries, double gamma) {
    const cmsCIExyY d65{0.3127, 0.3290, 1};
    cmsToneCurve* const curve = cmsBuildGamma(nullptr, gamma);
    cmsToneCurve* const curves[] = {curve, curve, curve};
    Profile profile = owned(cmsCreateRGBProfile(&d65, &primaries, curves));
    cmsFreeToneCurve(curve);
    return profile;
}

Profile greyProfile(double gamma) {
    cmsToneCurve* const curve = cmsBuildGamma(nullptr, gamma);
    Profile profile = owned(cmsCreateGrayProfile(cmsD50_xyY(), curve));
    cmsFreeToneCurve(curve);
    return profile;
}

constexpr cmsCIExyYTRIPLE adobePrimaries{{0.64, 0.33, 1}, {0.21, 0.71, 1}, {0.15, 0.06, 1}};
constexpr cmsCIExyYTRIPLE p3Primaries{{0.68, 0.32, 1}, {0.265, 0.69, 1}, {0.15, 0.06, 1}};

VImage withProfile(const VImage& image, const void* data, std::size_t size) {
    VImage result = image.copy();
    vips_image_set_blob_copy(result.get_image(), VIPS_META_ICC_NAME, data, size);
    return result;
}

std::vector<std::uint8_t> serialised(const Profile& profile) {
    cmsUInt32Number size = 0;
    cmsSaveProfileToMem(profile.get(), nullptr, &size);
    std::vector<std::uint8_t> data(size);
    cmsSaveProfileToMem(profile.get(), data.data(), &size);
    return data;
}

VImage withProfile(const VImage& image, const Profile& profile) {
    const auto data = serialised(profile);
    return withProfile(image, data.data(), data.size());
}

// What lcms2 makes of the same samples, opaque.
BitmapRef oracle(const VImage& image, const Profile& profile, cmsUInt32Number format) {
    const Profile srgb = owned(cmsCreate_sRGBProfile());
    cmsHTRANSFORM transform =
        cmsCreateTransform(profile.get(), format, srgb.get(), TYPE_RGBA_8, INTENT_PERCEPTUAL, 0);
    std::size_t size = 0;
    void* const samples = image.write_to_memory(&size);
    auto bitmap = Bitmap::create(image.width(), image.height());
    cmsDoTransform(transform, samples, bitmap->pixels().data(),
                   static_cast<cmsUInt32Number>(bitmap->pixels().size()));
    cmsDeleteTransform(transform);
    g_free(samples);
    for (Rgba& pixel : bitmap->pixels()) {
        pixel.a = 255;
    }
    return bitmap;
}

TEST(Colour, EmbeddedProfilesAgreeWithLcms) {
    const VImage colour = gradient(64, 64, 3);
    const VImage grey = gradient(64, 64, 1);
    const VImage deep =
        (colour * 257)
            .cast(VIPS_FORMAT_USHORT)
            .copy(VImage::option()->set("interpretation", VIPS_INTERPRETATION_RGB16));
    const Profile adobe = rgbProfile(adobePrimaries, 2.2);
    const Profile p3 = rgbProfile(p3Primaries, 2.4);
    const Profile darkGrey = greyProfile(1.0);
    constexpr int allowed = 2; // levels
    for (const char* suffix : {".png", ".tif"}) {
        EXPECT_LE(distance(decoded(saved(withProfile(colour, adobe), suffix)),
                           oracle(colour, adobe, TYPE_RGB_8)),
                  allowed)
            << suffix;
        EXPECT_LE(
            distance(decoded(saved(withProfile(deep, p3), suffix)), oracle(deep, p3, TYPE_RGB_16)),
            allowed)
            << suffix;
        EXPECT_LE(distance(decoded(saved(withProfile(grey, darkGrey), suffix)),
                           oracle(grey, darkGrey, TYPE_GRAY_8)),
                  allowed)
            << suffix;
    }
    const auto profile = serialised(adobe);
    const Bytes tiledPlanes = tiffOf(
        {2, 3, 8, true, true}, 64, 64,
        [&](unsigned x, unsigned y, unsigned i) {
            return static_cast<unsigned>(colour.getpoint(std::min(x, 63U), std::min(y, 63U))[i]);
        },
        {profile.begin(), profile.end()});
    EXPECT_LE(distance(decoded(tiledPlanes), oracle(colour, adobe, TYPE_RGB_8)), allowed);
    // Else the profiles would prove nothing.
    EXPECT_GT(distance(decoded(saved(colour, ".png")), oracle(colour, adobe, TYPE_RGB_8)), 20);
}

TEST(Colour, UselessProfilesArePassedOver) {
    const VImage colour = gradient(16, 16, 3);
    const auto plain = decoded(saved(colour, ".tif"));
    ASSERT_TRUE(plain);
    const std::string rubbish(200, '?');
    EXPECT_EQ(distance(decoded(saved(withProfile(colour, rubbish.data(), rubbish.size()), ".tif")),
                       plain),
              0);
    EXPECT_EQ(distance(decoded(saved(withProfile(colour, greyProfile(1.0)), ".tif")), plain), 0);
}

TEST(Colour, AlphaIsLeftOutOfColourManagement) {
    const VImage image = gradient(32, 32, 4);
    const Profile adobe = rgbProfile(adobePrimaries, 2.2);
    const auto managed = decoded(saved(withProfile(image, adobe), ".png"));
    const auto plain = decoded(saved(image, ".png"));
    ASSERT_TRUE(managed && plain);
    for (std::size_t i = 0; i < plain->pixels().size(); ++i) {
        ASSERT_EQ(managed->pixels()[i].a, plain->pixels()[i].a);
    }
}

TEST(Colour, CmykWithoutProfileHasPaperWhiteAndDarkInk) {
    const VImage image =
        rgbImage(3, 1, {0, 0, 0, 0, 0, 0, 0, 255, 0, 255, 255, 0})
            .copy(VImage::option()->set("interpretation", VIPS_INTERPRETATION_CMYK));
    for (const char* suffix : {".tif", ".jpg"}) {
        const auto bitmap =
            decoded(saved(image.embed(0, 0, 3, 1), suffix,
                          suffix[1] == 'j' ? VImage::option()->set("Q", 100) : nullptr));
        ASSERT_TRUE(bitmap) << suffix;
        const auto pixels = bitmap->pixels();
        EXPECT_GT(pixels[0].g, 240) << suffix;
        EXPECT_LT(pixels[1].g, 70) << suffix;
        EXPECT_GT(pixels[2].r, pixels[2].g + 100) << suffix;
    }
}

} // namespace
} // namespace murkwell
