#include "platform/ocr/LineJoiner.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace murkwell {
namespace {

// Level, 20 pixels high unless said otherwise, 10 pixels a character.
PageLine piece(const std::string& text, double x, double y, double height = 20) {
    PageLine line{text, {x, y, 10.0 * static_cast<double>(text.size()), height}, {}, {}, {}, height,
                  false};
    line.start = {x, y + height / 2};
    line.end = {line.box.br().x, y + height / 2};
    for (std::size_t i = 0; i < text.size(); ++i) {
        line.characterBoxes.emplace_back(x + 10 * static_cast<double>(i), y, 10, height);
    }
    return line;
}

std::vector<std::string> joined(const std::vector<PageLine>& pieces) {
    std::vector<std::string> texts;
    for (const PageLine& line : joinLines(pieces)) {
        EXPECT_EQ(line.text.size(), line.characterBoxes.size());
        texts.push_back(line.text);
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
    PageLine upright = piece("555", 100, 100);
    upright.vertical = true;
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
             {"upright", {upright, piece("555", 132, 100)}, {"555", "555"}},
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
    EXPECT_EQ(lines[0].characterBoxes[2], cv::Rect2d(30, 100, 12, 24));
    EXPECT_EQ(lines[0].box, cv::Rect2d(10, 100, 52, 24));
}

} // namespace
} // namespace murkwell
