#include "detect/RecognizedBoxes.h"

#include "detect/Characters.h"
#include "tests/support/FakeRecognition.h"

#include <gtest/gtest.h>
#include <limits>
#include <vector>

namespace murkwell {
namespace {

void expectNear(const PageRect& actual, const PageRect& expected, const char* what) {
    EXPECT_NEAR(actual.x, expected.x, 1e-12) << what;
    EXPECT_NEAR(actual.y, expected.y, 1e-12) << what;
    EXPECT_NEAR(actual.width, expected.width, 1e-12) << what;
    EXPECT_NEAR(actual.height, expected.height, 1e-12) << what;
}

TEST(Normalize, CutsRightAndBottomButMovesInFromLeftAndTop) {
    struct Case {
        const char* what;
        RecognizerRect box;
        PageRect expected;
    };
    for (const Case& c : std::vector<Case>{
             {"inside", {0.1, 0.8, 0.3, 0.05}, {0.1, 0.15, 0.3, 0.05}},
             {"over the left edge", {-0.2, 0.5, 0.3, 0.1}, {0, 0.4, 0.3, 0.1}},
             {"over the top edge", {0.1, 0.95, 0.3, 0.1}, {0.1, 0, 0.3, 0.1}},
             {"over the right edge", {0.9, 0.5, 0.3, 0.1}, {0.9, 0.4, 0.1, 0.1}},
             {"over the bottom edge", {0.1, -0.05, 0.3, 0.1}, {0.1, 0.95, 0.3, 0.05}},
             {"right of the page", {1.5, 0.5, 0.3, 0.1}, {1, 0.4, 0, 0.1}},
             {"below the page", {0.1, -0.5, 0.3, 0.1}, {0.1, 1, 0.3, 0}},
             {"larger than the page", {-1, -1, 3, 3}, {0, 0, 1, 1}},
         }) {
        expectNear(normalize(c.box), c.expected, c.what);
    }
}

TEST(ExpandedFace, GrowsOverHairChinAndEars) {
    expectNear(normalize(expandedFace({0.4, 0.4, 0.2, 0.2})), {0.376, 0.29, 0.248, 0.33}, "inside");
    expectNear(normalize(expandedFace({0.4, 0.75, 0.2, 0.2})), {0.376, 0, 0.248, 0.33},
               "at the top edge");
}

TEST(BoxOf, CountsCodePointsNotCodeUnits) {
    RecognizedLine line = asciiLine("xab");
    line.text = "\xf0\x9f\x98\x80"
                "ab"; // the boxes stay: three code points, four code units
    const RecognizerRect box = boxOf(line, Characters::fromUtf8(line.text), {2, 4});
    EXPECT_DOUBLE_EQ(box.minX(), 0.01);
    EXPECT_DOUBLE_EQ(box.maxX(), 0.03);
}

TEST(BoxOf, TheWholeLineWhenTheEngineDoesNotKnow) {
    const std::u16string text = u"abcd";
    const TextRange range{1, 3};

    RecognizedLine none = asciiLine("abcd");
    none.characterBoxes.clear();
    EXPECT_EQ(boxOf(none, text, range), none.box);

    RecognizedLine tooFew = asciiLine("abcd");
    tooFew.characterBoxes.pop_back();
    EXPECT_EQ(boxOf(tooFew, text, range), tooFew.box);

    RecognizedLine nothing = asciiLine("abcd");
    nothing.characterBoxes[1] = {};
    nothing.characterBoxes[2].width = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(boxOf(nothing, text, range), nothing.box);
}

TEST(BoxOf, EmptyBoxesInsideTheRangeAreStretchedOver) {
    RecognizedLine line = asciiLine("a b");
    line.characterBoxes[1] = {};
    const RecognizerRect box = boxOf(line, u"a b", {0, 3});
    EXPECT_DOUBLE_EQ(box.minX(), 0);
    EXPECT_DOUBLE_EQ(box.maxX(), 0.03);
    EXPECT_DOUBLE_EQ(box.minY(), 0.5);
}

} // namespace
} // namespace murkwell
