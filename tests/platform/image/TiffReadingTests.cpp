#include "platform/image/TiffReading.h"

#include "platform/image/AlphaArithmetic.h"
#include "tests/platform/image/TiffPictures.h"

#include <cmath>
#include <gtest/gtest.h>

namespace murkwell {
namespace {

using namespace std::chrono_literals;
using vips::VImage;

constexpr unsigned width = 37;
constexpr unsigned height = 23;
constexpr unsigned white = 0;
constexpr unsigned black = 1;
constexpr unsigned rgb = 2;
constexpr unsigned cmyk = 5;

// Values that go over the whole range and differ from sample to sample.
unsigned sampleAt(unsigned x, unsigned y, unsigned i, unsigned most) {
    return (x * 7 + y * 13 + i * 31) % 64 * most / 63;
}

// The nearest of 8 bits.
Rgba pixelOf(const TiffForm& form, unsigned x, unsigned y) {
    const unsigned most = (1U << form.bits) - 1;
    const auto level = [&](unsigned i) {
        return static_cast<std::uint8_t>(std::lround(sampleAt(x, y, i, most) * 255.0 / most));
    };
    const unsigned colours = form.photometric == rgb ? 3 : 1;
    const auto alpha = form.samples > colours ? level(colours) : std::uint8_t{255};
    if (colours == 3) {
        return premultiplied({level(0), level(1), level(2), alpha});
    }
    const auto grey =
        static_cast<std::uint8_t>(form.photometric == white ? 255 - level(0) : level(0));
    return premultiplied({grey, grey, grey, alpha});
}

Bytes sampled(const TiffForm& form) {
    return tiffOf(form, width, height, [&](unsigned x, unsigned y, unsigned i) {
        return sampleAt(x, y, i, (1U << form.bits) - 1);
    });
}

TEST(TiffReading, SamplesMayHaveAnyWidthAndLieAnywhere) {
    for (const unsigned bits : {1U, 2U, 4U, 6U, 8U, 10U, 12U, 14U, 16U}) {
        for (const auto& [photometric, samples] :
             {std::pair{white, 1U}, {black, 1U}, {black, 2U}, {rgb, 3U}, {rgb, 4U}}) {
            for (const bool separate : {false, true}) {
                for (const bool tiled : {false, true}) {
                    const TiffForm form{photometric, samples, bits, separate, tiled};
                    const auto expected = painted(width, height, [&](int x, int y) {
                        return pixelOf(form, static_cast<unsigned>(x), static_cast<unsigned>(y));
                    });
                    EXPECT_LE(distance(decoded(sampled(form)), expected), 1)
                        << bits << " bits, " << samples << " samples of " << photometric
                        << (separate ? ", separate" : "") << (tiled ? ", tiled" : "");
                }
            }
        }
    }
}

TEST(TiffReading, CmykIsTheSameInEveryForm) {
    const auto expected = decoded(sampled({cmyk, 4, 8, false, false}));
    EXPECT_EQ(distance(decoded(sampled({cmyk, 4, 8, true, true})), expected), 0);
    EXPECT_LE(distance(decoded(sampled({cmyk, 4, 12, false, false})), expected), 2);
}

TEST(TiffReading, OldStyleJpegHasTheColoursOfTheJpeg) {
    const VImage image = gradient(64, 48, 3).gaussblur(4);
    for (const auto& [mode, factor] :
         {std::pair{VIPS_FOREIGN_SUBSAMPLE_OFF, 1U}, {VIPS_FOREIGN_SUBSAMPLE_ON, 2U}}) {
        const Bytes jpeg = saved(image, ".jpg", VImage::option()->set("subsample_mode", mode));
        EXPECT_LE(distance(decoded(oldStyleJpegTiff(jpeg, 64, 48, factor)), decoded(jpeg)), 12)
            << factor;
    }
}

TEST(TiffReading, FurtherDirectoriesAreCounted) {
    Bytes file = sampled({rgb, 3, 12, true, true});
    const auto directory =
        std::to_integer<std::size_t>(file[6]) << 8 | std::to_integer<std::size_t>(file[7]);
    const Bytes again(file.begin() + static_cast<std::ptrdiff_t>(directory), file.end());
    file.at(file.size() - 2) = static_cast<std::byte>(file.size() >> 8);
    file.at(file.size() - 1) = static_cast<std::byte>(file.size());
    file.insert(file.end(), again.begin(), again.end());
    EXPECT_EQ(ImageCodecVips().decode(file).value().pictureCount, 2U);
}

TEST(TiffReading, PremultipliedAlphaIsNotAppliedTwice) {
    TiffTags tags{{256, {1}}, {257, {1}}, {258, {8, 8, 8, 8}}, {259, {1}},  {262, {2}},
                  {277, {4}}, {284, {2}}, {322, {16}},         {323, {16}}, {338, {1}}};
    std::vector<Bytes> planes;
    for (const unsigned value : {100U, 50U, 20U, 128U}) {
        planes.push_back(Bytes(256, static_cast<std::byte>(value)));
    }
    const auto expected = painted(1, 1, [](int, int) { return Rgba{100, 50, 20, 128}; });
    EXPECT_LE(distance(decoded(tiffOf(tags, planes, true)), expected), 1);
    tags[338] = {2};
    EXPECT_GT(distance(decoded(tiffOf(tags, planes, true)), expected), 40);
}

TEST(TiffReading, IsAllOrNothingAndBounded) {
    const Bytes whole = sampled({rgb, 3, 12, true, true});
    ASSERT_TRUE(decoded(whole));
    for (std::size_t size = 0; size < whole.size(); size += 13) {
        EXPECT_FALSE(decoded(std::span(whole).first(size))) << size;
    }
    const TimeLimit enough(1h);
    EXPECT_TRUE(readUncommonTiff(whole, 1 << 20, enough));
    EXPECT_THROW((void)readUncommonTiff(whole, 1 << 14, enough), vips::VError);
    EXPECT_THROW((void)readUncommonTiff(whole, 1 << 20, TimeLimit(0s)), vips::VError);
    EXPECT_FALSE(readUncommonTiff(sampled({rgb, 3, 8, false, false}), 1 << 20, enough));

    TiffTags huge{{256, {24000}}, {257, {20000}}, {258, {12, 12, 12}}, {259, {1}},    {262, {2}},
                  {277, {3}},     {284, {2}},     {322, {24000}},      {323, {20000}}};
    EXPECT_FALSE(decoded(tiffOf(huge, std::vector(3, Bytes(16)), true)));
    huge[322] = huge[323] = {0xfffffff0};
    huge[256] = huge[257] = {1};
    EXPECT_FALSE(decoded(tiffOf(huge, std::vector(3, Bytes(16)), true)));
}

} // namespace
} // namespace murkwell
