#include "platform/ocr/LineJoiner.h"

#include <cmath>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace murkwell {
namespace {

// Level, 20 pixels high unless said otherwise, 10 pixels a character. All readings are the same.
PageLine piece(const std::string& text, double x, double y, double height = 20) {
    const double width = 10.0 * static_cast<double>(text.size());
    LineText read{text, {}};
    for (std::size_t i = 0; i < text.size(); ++i) {
        read.characterBoxes.emplace_back(x + 10 * static_cast<double>(i), y, 10, height);
    }
    PageLine line{{},     {x, y, width, height}, {x, y + height / 2}, {x + width, y + height / 2},
                  height, Direction::right};
    line.texts.fill(read);
    return line;
}

// The same, turned about the origin of the page.
PageLine turned(PageLine line, double degrees, Direction direction) {
    const double angle = degrees * CV_PI / 180;
    for (cv::Point2d* end : {&line.start, &line.end}) {
        *end = {end->x * std::cos(angle) - end->y * std::sin(angle),
                end->x * std::sin(angle) + end->y * std::cos(angle)};
    }
    line.direction = direction;
    return line;
}

std::vector<std::string> joined(const std::vector<PageLine>& pieces) {
    std::vector<std::string> texts;
    for (const PageLine& line : joinLines(pieces)) {
        for (const LineText& read : line.texts) {
            EXPECT_EQ(read.text.size(), read.characterBoxes.size());
        }
        texts.push_back(line.texts.back().text);
    }
    return texts;
}

TEST(JoinLines, OnlyNeighboursOnOneBaseline) {
    using Texts = std::vector<std::string>;
    struct Case {
        const char* what;
        std::vector<PageLine> pieces;
        Texts expected;
    };
    for (const Case& c : std::vector<Case>{
             {"neighbours in any order",
              {piece("1234", 92, 101), piece("555 123", 10, 100)},
              {"555 123 1234"}},
             {"three of them",
              {piece("c", 42, 100), piece("a", 10, 100), piece("b", 26, 100)},
              {"a b c"}},
             {"columns apart",
              {piece("left", 10, 100), piece("right", 70, 100)},
              {"left", "right"}},
             {"another baseline", {piece("a", 10, 100), piece("b", 22, 110)}, {"a", "b"}},
             {"another size", {piece("a", 10, 100), piece("b", 22, 93, 34)}, {"b", "a"}},
             {"along a slant",
              {turned(piece("b", 22, 100), 45, Direction::right),
               turned(piece("a", 10, 100), 45, Direction::right)},
              {"a b"}},
             {"down, up and on the head",
              {turned(piece("b", 22, 100), 90, Direction::down),
               turned(piece("a", 10, 100), 90, Direction::down),
               turned(piece("d", 22, 300), -90, Direction::up),
               turned(piece("c", 10, 300), -90, Direction::up),
               turned(piece("f", 22, 500), 180, Direction::left),
               turned(piece("e", 10, 500), 180, Direction::left)},
              {"a b", "c d", "e f"}},
             {"another direction",
              {turned(piece("a", 10, 100), 0, Direction::left), piece("b", 22, 100)},
              {"b", "a"}},
             {"digits far apart, once more as one",
              {piece("4111", 10, 100), piece("1111", 85, 100)},
              {"4111", "1111", "4111 1111"}},
             {"in order of the top edges",
              {piece("low", 10, 300), piece("high", 200, 20)},
              {"high", "low"}},
             {"nothing", {}, {}},
         }) {
        EXPECT_EQ(joined(c.pieces), c.expected) << c.what;
    }
}

TEST(JoinLines, TheSpaceCoversTheGap) {
    const auto lines = joinLines({piece("ab", 10, 100), piece("cd", 42, 104)});
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0].texts[0].characterBoxes[2], cv::Rect2d(30, 100, 12, 24));
    EXPECT_EQ(lines[0].box, cv::Rect2d(10, 100, 52, 24));
}

} // namespace
} // namespace murkwell
