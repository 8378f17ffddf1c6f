#include "model/NearDuplicates.h"

#include <gtest/gtest.h>

namespace murkwell {
namespace {

Redaction box(const PageRect& rect) {
    return {Uuid{}, rect, RedactionStyle::solidBlack, true};
}

TEST(NearDuplicates, AreNearByCentreAndSizeAndLieWithinButForAHair) {
    struct Case {
        const char* what;
        PageRect there;
        bool suppresses;
    };
    // 500 x 125 pixels, so that a hair is 18.75 of them: 0.0094 across and 0.0188 down.
    const PageRect found{0.25, 0.5, 0.25, 0.125};
    for (const Case& each : std::vector<Case>{
             {"the same", found, true},
             {"drawn from the other corner", {0.5, 0.625, -0.25, -0.125}, true},
             {"nearly a hair to the right", {0.2593, 0.5, 0.25, 0.125}, true},
             {"more than a hair to the right", {0.2595, 0.5, 0.25, 0.125}, false},
             {"more than a hair to the left", {0.2405, 0.5, 0.25, 0.125}, false},
             {"nearly a hair flatter at the foot", {0.25, 0.5, 0.25, 0.1063}, true},
             {"more than a hair flatter at the foot", {0.25, 0.5, 0.25, 0.106}, false},
             {"more than a hair flatter at the head", {0.25, 0.519, 0.25, 0.106}, false},
             {"around it, centre nearly 0.01 away", {0.2504, 0.5, 0.269, 0.125}, true},
             {"around it, centre more than 0.01 away", {0.2506, 0.5, 0.269, 0.125}, false},
             {"around it, centre more than 0.01 higher", {0.25, 0.4804, 0.25, 0.1439}, false},
             {"nearly 0.02 wider around the centre", {0.2405, 0.5, 0.269, 0.125}, true},
             {"more than 0.02 wider around the centre", {0.2395, 0.5, 0.271, 0.125}, false},
             {"more than 0.02 higher around the centre", {0.25, 0.4895, 0.25, 0.146}, false},
         }) {
        const auto left = withoutNearDuplicates({box(found)}, {box(each.there)}, {2000, 1000});
        EXPECT_EQ(left.empty(), each.suppresses) << each.what;
    }
}

TEST(NearDuplicates, EveryRowOfAColumnInSmallPrintStays) {
    struct Column {
        PixelSize page;
        int rows;
        double pitch; // pixels, of boxes that are 17 high
    };
    for (const Column& column : std::vector<Column>{
             {{1080, 1684}, 106, 15}, {{1080, 3100}, 130, 23}, {{1080, 3100}, 195, 15}}) {
        // As two readers see it: the second one's boxes are a pixel off.
        const auto seen = [&](double off) {
            std::vector<Redaction> boxes;
            for (int row = 0; row < column.rows; ++row) {
                const double top = 40 + row * column.pitch + off;
                boxes.push_back(box({(80 + off) / column.page.width, top / column.page.height,
                                     76.0 / column.page.width, 17.0 / column.page.height}));
            }
            return boxes;
        };
        const auto first = withoutNearDuplicates(seen(0), {}, column.page);
        EXPECT_EQ(first.size(), static_cast<std::size_t>(column.rows));
        EXPECT_TRUE(withoutNearDuplicates(seen(1), first, column.page).empty());
    }
}

} // namespace
} // namespace murkwell
