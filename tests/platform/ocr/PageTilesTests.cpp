#include "platform/ocr/PageTiles.h"

#include <gtest/gtest.h>
#include <opencv2/imgproc.hpp>
#include <vector>

namespace murkwell {
namespace {

TEST(PageTiles, CoverThePageAndOverlapByAThickLine) {
    constexpr double area = 3e6;
    for (const cv::Size page : {cv::Size(1280, 9000), {4960, 7016}, {20000, 900}, {300, 200}}) {
        for (const bool down : {false, true}) {
            cv::Mat seen(page, CV_8U, cv::Scalar(0));
            for (const cv::Rect& tile : tilesOf(page, down, area)) {
                ASSERT_EQ(tile & cv::Rect({}, page), tile);
                EXPECT_LE(tile.area(), 1.01 * area);
                seen(tile) = 1;
                // A line of 100 pixels height that begins in the tile's last rows or columns lies
                // in the next one.
                const cv::Rect next = down ? tile + cv::Point(tile.width - 100, 0)
                                           : tile + cv::Point(0, tile.height - 100);
                const cv::Rect cut = (down ? cv::Rect(next.tl(), cv::Size(100, 200))
                                           : cv::Rect(next.tl(), cv::Size(200, 100))) &
                                     cv::Rect({}, page);
                bool whole = false;
                for (const cv::Rect& other : tilesOf(page, down, area)) {
                    whole = whole || (other & cut) == cut;
                }
                EXPECT_TRUE(whole) << page << tile;
            }
            EXPECT_EQ(cv::countNonZero(seen), page.area());
        }
    }
}

TEST(PageTiles, WhatWasFoundTwiceIsOneLine) {
    using Lines = std::vector<cv::RotatedRect>;
    struct Case {
        const char* what;
        Lines lines;
        std::vector<cv::Rect> expected; // bounding boxes
    };
    for (const Case& c : std::vector<Case>{
             {"from afar and from near",
              {{{200, 50}, {300, 20}, 0}, {{202, 50}, {290, 18}, 0}},
              {{50, 40, 300, 20}}},
             {"pieces from two tiles",
              {{{200, 50}, {300, 20}, 0}, {{480, 50}, {300, 20}, 0}},
              {{50, 40, 580, 20}}},
             {"neighbours",
              {{{200, 50}, {300, 20}, 0}, {{200, 74}, {300, 20}, 0}},
              {{50, 40, 300, 20}, {50, 64, 300, 20}}},
             {"two lines that from afar were one",
              {{{200, 62}, {300, 48}, 0}, {{200, 50}, {300, 20}, 0}, {{200, 74}, {300, 20}, 0}},
              {{50, 40, 300, 20}, {50, 64, 300, 20}}},
             {"small print in huge type",
              {{{200, 100}, {300, 200}, 0}, {{200, 100}, {300, 20}, 0}},
              {{50, 0, 300, 200}, {50, 90, 300, 20}}},
         }) {
        const Lines lines = withoutRepeats(c.lines);
        ASSERT_EQ(lines.size(), c.expected.size()) << c.what;
        for (std::size_t i = 0; i < lines.size(); ++i) {
            const cv::Rect2f box = lines[i].boundingRect2f();
            const cv::Rect2f expected(c.expected[i]);
            EXPECT_GT((box & expected).area(), .95F * (box | expected).area()) << c.what;
        }
    }
}

} // namespace
} // namespace murkwell
