#include "platform/confinement/Lines.h"

#include <cstring>
#include <gtest/gtest.h>
#include <limits>

namespace murkwell {
namespace {

using Boxes = std::vector<RecognizerRect>;

std::vector<RecognizedLine> someLines() {
    return {{"Zürich \uFFFD 4711", {.1, .2, .3, .04}, Boxes(13, {.1, .2, .02, .04})},
            {"", {}, {}},
            {"no boxes", {-.01, .99, 1.02, .02}, {}}};
}

TEST(Lines, ComeBackAsTheyWere) {
    const auto lines = someLines();
    const auto back = linesFrom(toBytes(lines));
    ASSERT_TRUE(back);
    ASSERT_EQ(back->size(), lines.size());
    for (std::size_t i = 0; i < lines.size(); ++i) {
        EXPECT_EQ((*back)[i].text, lines[i].text);
        EXPECT_EQ((*back)[i].box, lines[i].box);
        EXPECT_EQ((*back)[i].characterBoxes, lines[i].characterBoxes);
    }
    EXPECT_EQ(boxesFrom(toBytes(lines[0].characterBoxes)), lines[0].characterBoxes);
    EXPECT_TRUE(linesFrom({})->empty());
    EXPECT_TRUE(boxesFrom({})->empty());
}

TEST(Lines, AreRefusedWhenAnythingIsWrong) {
    const auto lines = someLines();
    const auto first = toBytes(std::span(lines).first(1));
    for (std::size_t length = 1; length < first.size(); ++length) {
        EXPECT_FALSE(linesFrom(std::span(first).first(length))) << length;
    }
    EXPECT_FALSE(boxesFrom(std::span(first).first(33)));

    const double far = 1e9;
    const double none = std::numeric_limits<double>::quiet_NaN();
    const double endless = std::numeric_limits<double>::infinity();
    for (const RecognizerRect& box :
         {RecognizerRect{far, 0, 0, 0}, RecognizerRect{0, none, 0, 0},
          RecognizerRect{0, 0, -endless, 0}, RecognizerRect{0, 0, 0, endless}}) {
        EXPECT_FALSE(boxesFrom(toBytes(Boxes{box})));
        EXPECT_FALSE(linesFrom(toBytes(std::vector<RecognizedLine>{{"x", box, {}}})));
        EXPECT_FALSE(linesFrom(toBytes(std::vector<RecognizedLine>{{"x", {}, {box}}})));
    }
    for (const char* const text : {"\xC3", "\xFF", "a\xED\xA0\x80", "\xC0\x80"}) {
        EXPECT_FALSE(linesFrom(toBytes(std::vector<RecognizedLine>{{text, {}, {}}}))) << text;
    }
    auto counts = first;
    const std::uint32_t most = std::numeric_limits<std::uint32_t>::max();
    for (const std::size_t at : {0U, 4U}) { // of the text's bytes, of the boxes
        std::memcpy(counts.data() + at, &most, sizeof most);
        EXPECT_FALSE(linesFrom(counts));
    }
}

} // namespace
} // namespace murkwell
