#include "detect/Characters.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace murkwell {
namespace {

TEST(Characters, InvalidUtf8BecomesReplacementCharacters) {
    const std::u16string text = Characters::fromUtf8("a\xed\xa0\xbd"
                                                     "b\xff"
                                                     "c");
    EXPECT_EQ(text.front(), u'a');
    EXPECT_EQ(text.back(), u'c');
    for (const char16_t unit : text) {
        EXPECT_FALSE(unit >= 0xd800 && unit < 0xe000);
    }
}

TEST(Characters, TrimmingTakesEveryUnicodeWhiteSpace) {
    EXPECT_EQ(Characters::trimmed(u" \t\r\n\u00a0\u2028\u3000 a b\u0085\u2029"), u"a b");
    EXPECT_TRUE(Characters::trimmed(u" \n\u2003").empty());
    EXPECT_TRUE(Characters::trimmed(u"").empty());
    EXPECT_EQ(Characters::trimmed(u"\u200bx"), u"\u200bx"); // of no width, but no white space
}

TEST(Characters, SplitKeepsClustersTogetherAndLosesNothing) {
    struct Case {
        std::u16string text;
        std::size_t count;
    };
    for (const Case& c : std::vector<Case>{
             {u"", 0},
             {u"abc", 3},
             {u"a\r\nb", 3},
             {u"e\u0301e", 2},
             {u"\u0301\u0302", 1},
             {u"\U0001f469\u200d\U0001f469\u200d\U0001f467!", 2},
             {u"\U0001f1e9\U0001f1ea\U0001f1eb\U0001f1f7", 2},
             {u"\u05e9\u05dc\u05d5\u05dd", 4},
             {std::u16string{0xd83d, u'x', 0xde00}, 3},
         }) {
        const auto characters = Characters::split(c.text);
        EXPECT_EQ(characters.size(), c.count) << testing::PrintToString(c.text);
        std::size_t end = 0;
        for (const TextRange& character : characters) {
            EXPECT_EQ(character.begin, end);
            EXPECT_LT(character.begin, character.end);
            end = character.end;
        }
        EXPECT_EQ(end, c.text.size());
    }
}

TEST(Characters, LettersAndNumbersOfEveryScriptAndKind) {
    for (const char16_t* const belongs :
         {u"a", u"\u00e9", u"e\u0301", u"\u05d0", u"\u4e2d", u"\u2167", u"7", u"\u0667", u"\u00bd",
          u"\u00b2", u"\u2460", u"\U0001d7d9"}) {
        EXPECT_TRUE(Characters::isLetterOrNumber(belongs)) << testing::PrintToString(belongs);
    }
    for (const char16_t* const separates :
         {u"", u" ", u"-", u"_", u"@", u"\u0301", u"\U0001f600", u"\u2122", u"\u20ac"}) {
        EXPECT_FALSE(Characters::isLetterOrNumber(separates)) << testing::PrintToString(separates);
    }
}

} // namespace
} // namespace murkwell
