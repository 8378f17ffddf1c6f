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
        Direction direction;
    };
    for (const Case& c : std::vector<Case>{{0, Direction::right},
                                           {12, Direction::right},
                                           {-12, Direction::right},
                                           {60, Direction::right},
                                           {90, Direction::down},
                                           {-90, Direction::up},
                                           {180, Direction::left}}) {
        const auto [page, line] = turnedLine(c.degrees);
        const auto strip = cutStrip(pixelsOf(*page.bitmap), line, c.direction);
        ASSERT_TRUE(strip);
        EXPECT_EQ(strip->line().rows, 48);
        EXPECT_NEAR(strip->image.cols, 480, 8);
        const auto [left, right] = inkOfHalves(strip->line());
        EXPECT_GT(left, 1000) << c.degrees;
        EXPECT_EQ(right, 0) << c.degrees;
    }
}

TEST(LineStrip, PageBoxLeadsBackToThePage) {
    const auto [page, line] = turnedLine(90);
    const auto strip = cutStrip(pixelsOf(*page.bitmap), line, Direction::down);
    ASSERT_TRUE(strip);
    const cv::Rect2d box = strip->pageBox(0, strip->image.cols / 4.0);
    EXPECT_NEAR(box.x, 140, 1);
    EXPECT_NEAR(box.y, 0, 1);
    EXPECT_NEAR(box.width, 20, 1);
    EXPECT_NEAR(box.height, 50, 1);
}

// A line is found without the accents of its capitals.
TEST(LineStrip, ShowsWhatIsAboveTheLine) {
    DrawnPage page(300, 200);
    cv::Mat pixels = pixelsOf(*page.bitmap);
    cv::rectangle(pixels, {60, 88}, {90, 89}, {0, 0, 0, 255}, cv::FILLED);
    const auto strip =
        cutStrip(pixels, cv::RotatedRect({150, 100}, {200, 20}, 0), Direction::right);
    ASSERT_TRUE(strip);
    EXPECT_GT(inkOfHalves(strip->image).first, 100);
    EXPECT_EQ(inkOfHalves(strip->line().rowRange(4, 48)).first, 0);
}

TEST(LineStrip, ThinStrokesOfHugeLettersSurvive) {
    DrawnPage page(2000, 700);
    cv::Mat pixels = pixelsOf(*page.bitmap);
    for (int x = 100; x < 1900; x += 8) {
        cv::line(pixels, {x, 100}, {x, 600}, {0, 0, 0, 255}, 3);
    }
    const auto strip =
        cutStrip(pixels, cv::RotatedRect({1000, 350}, {1900, 600}, 0), Direction::right);
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
    EXPECT_FALSE(cutStrip(pixels, cv::RotatedRect({25, 25}, {0, 0}, 0), Direction::right));
    EXPECT_FALSE(cutStrip(pixels, cv::RotatedRect({900, 900}, {40, 10}, 0), Direction::right));
    const auto partly = cutStrip(pixels, cv::RotatedRect({50, 25}, {40, 10}, 0), Direction::right);
    EXPECT_TRUE(partly);
}

} // namespace
} // namespace murkwell
