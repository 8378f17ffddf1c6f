#include "platform/ocr/Spacing.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace murkwell {
namespace {

// A line of a proportional font: 3 blank columns between letters, 14 more where the text has a
// space and it was drawn; the reader's spaces are given apart.
std::vector<CharacterGap> gapsOf(const std::string& text, double spaceWidth, bool readerSees) {
    std::vector<CharacterGap> gaps;
    char before = 0;
    bool space = false;
    for (const char next : text) {
        if (next == ' ') {
            space = true;
            continue;
        }
        if (before != 0) {
            const double extra = space ? spaceWidth : 0;
            gaps.push_back({before, next, 3 + extra, 22 + extra, space && readerSees});
        }
        before = next;
        space = false;
    }
    return gaps;
}

std::string rebuilt(const std::string& text, const std::vector<bool>& spaces) {
    std::string result;
    for (const char next : text) {
        if (next != ' ') {
            if (!result.empty() &&
                spaces.at(static_cast<std::size_t>(
                    std::ranges::count_if(result, [](char c) { return c != ' '; }) - 1))) {
                result += ' ';
            }
            result += next;
        }
    }
    return result;
}

TEST(Spaces, GapAndReaderDecideTogether) {
    struct Case {
        const char* what;
        const char* text;
        double width;
        bool seen;
        const char* expected;
    };
    for (const Case& c : std::vector<Case>{
             {"seen and wide", "call me now", 14, true, "call me now"},
             {"seen but no gap", "call me now", 0, true, "callmenow"},
             {"wide but not seen", "call me now", 24, false, "call me now"},
             {"a little wide and not seen", "call me now", 5, false, "callmenow"},
             {"before an at sign", "someone @mail", 9, true, "someone@mail"},
             {"far before an at sign", "someone @mail", 26, true, "someone @mail"},
             {"after a dot inside a name", "example. com", 7, true, "example.com"},
             {"after a sentence", "done. Next", 14, true, "done. Next"},
             {"groups of digits keep their spaces", "4111 1111 1111", 14, true, "4111 1111 1111"},
             {"before a plus", "call +1 555", 14, true, "call +1 555"},
         }) {
        EXPECT_EQ(rebuilt(c.text, decideSpaces(gapsOf(c.text, c.width, c.seen))), c.expected)
            << c.what;
    }
}

TEST(Spaces, ATypewritersGapsAreNoSpacesUntilACharacterIsMissing) {
    std::vector<CharacterGap> gaps(12, CharacterGap{'a', 'b', 8, 24, false});
    gaps[3].blank = 17; // between "i" and "l"
    gaps[6] = {'a', 'b', 32, 48, false};
    const std::vector<bool> spaces = decideSpaces(gaps);
    EXPECT_FALSE(spaces[3]);
    EXPECT_TRUE(spaces[6]);
}

TEST(Spaces, TooShortALineIsLeftAsRead) {
    EXPECT_TRUE(decideSpaces({}).empty());
    EXPECT_EQ(decideSpaces({{'a', 'b', 0, 1, true}, {'b', 'c', 99, 120, false}}),
              (std::vector<bool>{true, false}));
}

} // namespace
} // namespace murkwell
