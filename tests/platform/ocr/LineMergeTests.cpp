#include "platform/ocr/LineMerge.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace murkwell {
namespace {

constexpr PixelSize page{1000, 1000};

RecognizedLine line(std::string text, const RecognizerRect& box) {
    return {std::move(text), box, {}};
}

TEST(MergeReadings, TheSecondReaderAddsWhatTheFirstDidNotSay) {
    const RecognizerRect here{.1, .5, .3, .02};
    const RecognizerRect nearby{.11, .501, .28, .019};
    const RecognizerRect elsewhere{.1, .3, .3, .02};
    const RecognizerRect upright{.2, .1, .02, .8};
    struct Case {
        const char* what;
        std::vector<RecognizedLine> first, second;
        std::vector<std::string> expected;
    };
    for (const Case& c : std::vector<Case>{
             {"the same", {line("a@b.co", here)}, {line("a@b.co", nearby)}, {"a@b.co"}},
             {"a part of it", {line("to a@b.co", here)}, {line("a@b.co", nearby)}, {"to a@b.co"}},
             {"another reading",
              {line("a@b,co", here)},
              {line("a@b.co", nearby)},
              {"a@b,co", "a@b.co"}},
             {"the same text in another place",
              {line("a@b.co", here)},
              {line("a@b.co", elsewhere)},
              {"a@b.co", "a@b.co"}},
             {"nothing of the first", {}, {line("a@b.co", here)}, {"a@b.co"}},
             {"across an upright line",
              {line("upright", upright)},
              {line("nonsense", {.15, .4, .1, .02})},
              {"upright"}},
             {"beside an upright line",
              {line("upright", upright)},
              {line("level", elsewhere)},
              {"upright", "level"}},
             {"a single high character is not upright",
              {line("1", upright)},
              {line("1 of 2", {.15, .4, .1, .02})},
              {"1", "1 of 2"}},
         }) {
        std::vector<std::string> texts;
        for (const RecognizedLine& merged : mergeReadings(c.first, c.second, page)) {
            texts.push_back(merged.text);
        }
        EXPECT_EQ(texts, c.expected) << c.what;
    }
}

} // namespace
} // namespace murkwell
