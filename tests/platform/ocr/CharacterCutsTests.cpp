#include "platform/ocr/CharacterCuts.h"

#include <gtest/gtest.h>
#include <opencv2/imgproc.hpp>
#include <string>
#include <vector>

namespace murkwell {
namespace {

constexpr int stripWidth = 400;

// A strip with a bar of ink for each character, and the reading a network gives for it.
struct DrawnStrip {
    explicit DrawnStrip(const cv::Scalar& paper)
        : image(LineStrip::height, stripWidth, CV_8UC3, paper) {}

    void add(char character, int left, int right, const cv::Scalar& ink) {
        cv::rectangle(image, {left, 10}, {right - 1, 38}, ink, cv::FILLED);
        read.push_back({std::string(1, character), (left + right) / 2.0, 1});
    }

    cv::Mat image;
    std::vector<ReadCharacter> read;
};

TEST(CharacterCuts, RunThroughTheBlankBetweenBarsOnLightAndDarkPaper) {
    for (const bool dark : {false, true}) {
        const cv::Scalar paper = cv::Scalar::all(dark ? 30 : 250);
        const cv::Scalar ink = cv::Scalar::all(dark ? 220 : 20);
        DrawnStrip strip(paper);
        for (int i = 0; i < 6; ++i) {
            strip.add(static_cast<char>('a' + i), 40 + 20 * i, 54 + 20 * i, ink);
        }
        const auto placed = placeCharacters(strip.read, strip.image);
        ASSERT_EQ(placed.size(), 6U);
        for (int i = 0; i < 6; ++i) {
            const PlacedCharacter& character = placed[static_cast<std::size_t>(i)];
            EXPECT_LE(character.left, 40 + 20 * i) << i;
            EXPECT_GE(character.right, 54 + 20 * i) << i;
            EXPECT_GE(character.left, 34 + 20 * i) << i;
            EXPECT_LE(character.right, 60 + 20 * i) << i;
        }
    }
}

TEST(CharacterCuts, TheLastCharacterEndsWithItsInkAndNotWithTheStrip) {
    DrawnStrip strip(cv::Scalar::all(255));
    for (int i = 0; i < 5; ++i) {
        strip.add('m', 100 + 20 * i, 114 + 20 * i, cv::Scalar::all(0));
    }
    strip.read.back().centre -= 5; // networks point beside the middle
    const auto placed = placeCharacters(strip.read, strip.image);
    EXPECT_GE(placed.back().right, 194);
    EXPECT_LE(placed.back().right, 200);
    EXPECT_GE(placed.front().left, 94);
}

TEST(CharacterCuts, TouchingCharactersArePartedWhereTheInkIsThin) {
    DrawnStrip strip(cv::Scalar::all(255));
    strip.add('a', 100, 120, cv::Scalar::all(0));
    strip.add('b', 124, 144, cv::Scalar::all(0));
    cv::rectangle(strip.image, {120, 30}, {123, 33}, cv::Scalar::all(0), cv::FILLED);
    const auto placed = placeCharacters(strip.read, strip.image);
    ASSERT_EQ(placed.size(), 2U);
    EXPECT_GE(placed[0].right, 120);
    EXPECT_LE(placed[0].right, 124);
    EXPECT_EQ(placed[0].right, placed[1].left);
}

TEST(CharacterCuts, SpacesAtTheEndsAreDroppedAndOnlySpacesAreNothing) {
    const cv::Mat blank(LineStrip::height, 64, CV_8UC3, cv::Scalar::all(255));
    EXPECT_TRUE(placeCharacters({}, blank).empty());
    EXPECT_TRUE(placeCharacters({{" ", 10, 1}, {" ", 30, 1}}, blank).empty());
    const auto placed = placeCharacters({{" ", 10, 1}, {"x", 30, 1}, {" ", 60, 1}}, blank);
    ASSERT_EQ(placed.size(), 1U);
    EXPECT_FALSE(placed[0].spaceRead || placed[0].spaceDecided);
}

TEST(CharacterCuts, ReadingsOutsideTheStripAreHarmless) {
    const cv::Mat noise(LineStrip::height, 16, CV_8UC3, cv::Scalar::all(128));
    const auto placed = placeCharacters({{"a", -5, 1}, {"b", 3, 1}, {"c", 400, 1}}, noise);
    EXPECT_EQ(placed.size(), 3U);
}

} // namespace
} // namespace murkwell
