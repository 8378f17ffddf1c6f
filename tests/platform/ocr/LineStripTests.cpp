#include "platform/ocr/LineStrip.h"

#include "tests/support/DrawnPage.h"

#include <gtest/gtest.h>
#include <vector>

namespace murkwell {
namespace {

// Dark pixels in the left and in the right half of a strip.
std::pair<int, int> inkOfHalves(const cv::Mat& strip) {
    cv::Mat grey;
    cv::cvtColor(strip, grey, cv::COLOR_BGR2GRAY);
    const cv::Mat ink = grey < 128;
    return {cv::countNonZero(ink.colRange(0, ink.cols / 2)),
            cv::countNonZero(ink.colRange(ink.cols / 2, ink.cols))};
}

// A level line of 200 x 20 pixels around (150, 100) with a blot at its start, turned by so many
// degrees about that point.
std::pair<DrawnPage, cv::RotatedRect> turnedLine(float degrees) {
    DrawnPage page(300, 200);
    cv::Mat pixels = pixelsOf(*page.bitmap);
    cv::rectangle(pixels, {60, 94}, {90, 106}, {0, 0, 0, 255}, cv::FILLED);
    const cv::Mat turn = cv::getRotationMatrix2D({150, 100}, -degrees, 1);
    cv::Mat turned;
    cv::warpAffine(pixels, turned, turn, pixels.size(), cv::INTER_LINEAR, cv::BORDER_CONSTANT,
                   cv::Scalar::all(255));
    turned.copyTo(pixels);
    return {page, cv::RotatedRect({150, 100}, {200, 20}, degrees)};
}

TEST(LineStrip, BeginsWhereTheLineBegins) {
    struct Case {
        float degrees;
        Reading reading;
    };
    for (const Case& c : std::vector<Case>{{0, Reading::along},
                                           {12, Reading::along},
                                           {-12, Reading::along},
                                           {90, Reading::along},
                                           {-90, Reading::against}}) {
        const auto [page, line] = turnedLine(c.degrees);
        const auto strip = cutStrip(pixelsOf(*page.bitmap), line, c.reading);
        ASSERT_TRUE(strip);
        EXPECT_EQ(strip->image.rows, 48);
        EXPECT_EQ(strip->image.cols, 480);
        const auto [left, right] = inkOfHalves(strip->image);
        EXPECT_GT(left, 1000) << c.degrees;
        EXPECT_EQ(right, 0) << c.degrees;
    }
}

TEST(LineStrip, PageBoxLeadsBackToThePage) {
    const auto [page, line] = turnedLine(90);
    const auto strip = cutStrip(pixelsOf(*page.bitmap), line, Reading::along);
    ASSERT_TRUE(strip);
    EXPECT_TRUE(strip->vertical);
    const cv::Rect2d box = strip->pageBox(0, strip->image.cols / 4.0);
    EXPECT_NEAR(box.x, 140, 1);
    EXPECT_NEAR(box.y, 0, 1);
    EXPECT_NEAR(box.width, 20, 1);
    EXPECT_NEAR(box.height, 50, 1);
}

TEST(LineStrip, ThinStrokesOfHugeLettersSurvive) {
    DrawnPage page(2000, 700);
    cv::Mat pixels = pixelsOf(*page.bitmap);
    for (int x = 100; x < 1900; x += 8) {
        cv::line(pixels, {x, 100}, {x, 600}, {0, 0, 0, 255}, 3);
    }
    const auto strip =
        cutStrip(pixels, cv::RotatedRect({1000, 350}, {1900, 600}, 0), Reading::along);
    ASSERT_TRUE(strip);
    // 3 of 8 columns are ink: grey everywhere, white nowhere.
    const cv::Mat middle = strip->image(cv::Rect(20, 20, strip->image.cols - 40, 8));
    double lightest = 0;
    cv::minMaxLoc(middle.reshape(1), nullptr, &lightest);
    EXPECT_LT(lightest, 245);
}

TEST(LineStrip, DegenerateAndOutlyingRectanglesGiveNoneOrAStrip) {
    DrawnPage page(50, 50);
    const cv::Mat pixels = pixelsOf(*page.bitmap);
    EXPECT_FALSE(cutStrip(pixels, cv::RotatedRect({25, 25}, {0, 0}, 0), Reading::along));
    EXPECT_FALSE(cutStrip(pixels, cv::RotatedRect({900, 900}, {40, 10}, 0), Reading::along));
    const auto partly = cutStrip(pixels, cv::RotatedRect({50, 25}, {40, 10}, 0), Reading::along);
    EXPECT_TRUE(partly);
}

} // namespace
} // namespace murkwell
