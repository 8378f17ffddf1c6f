#include "detect/ExactSearch.h"

#include "detect/Characters.h"

#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

namespace murkwell {
namespace {

using Ranges = std::vector<TextRange>;

TEST(ExactRanges, TableOfWhatIsEqual) {
    struct Case {
        const char* what;
        std::u16string query;
        std::u16string line;
        Ranges expected;
    };
    for (const Case& c : std::vector<Case>{
             {"letter case", u"acme", u"ACME, Acme and acme", {{0, 4}, {6, 10}, {15, 19}}},
             {"accents count", u"caf\u00e9", u"cafe", {}},
             {"accents count in pieces too", u"cafe", u"cafe\u0301", {}},
             {"equivalent accents", u"caf\u00e9", u"un cafe\u0301!", {{3, 8}}},
             {"equivalent the other way", u"cafe\u0301", u"CAF\u00c9", {{0, 4}}},
             {"reordered marks", u"q\u0307\u0323", u"q\u0323\u0307", {{0, 3}}},
             {"widths count", u"A", u"\uff21", {}},
             {"superscripts count", u"2", u"m\u00b2", {}},
             {"no locale", u"i", u"\u0130\u0131I", {{2, 3}}},
             {"final sigma", u"\u03c3", u"\u03c2\u03a3", {{0, 1}, {1, 2}}},
             {"never overlapping", u"aa", u"aaaa", {{0, 2}, {2, 4}}},
             {"odd run", u"aa", u"aaa", {{0, 2}}},
             {"spaces and parts of words", u"23 45", u"123 456", {{1, 6}}},
             {"after a supplementary character", u"x", u"\U0001f600x", {{2, 3}}},
             {"half an emoji", u"\U0001f469", u"\U0001f469\u200d\U0001f467", {}},
             {"part of a Hangul syllable", u"\uac00", u"\uac01", {}},
             {"decomposed Hangul", u"\uac01", u"\u1100\u1161\u11a8", {{0, 3}}},
             {"only a mark", u"\u0301", u"e\u0301", {}},
             {"regular expression signs", u".*[", u"a.*[b", {{1, 4}}},
             {"hyphens", u"---", u"a --- b", {{2, 5}}},
             {"right to left", u"\u05dc\u05d5", u"\u05e9\u05dc\u05d5\u05dd", {{1, 3}}},
             {"empty query", u"", u"abc", {}},
             {"empty line", u"abc", u"", {}},
         }) {
        EXPECT_EQ(exactRanges(c.query, c.line), c.expected) << c.what;
    }
}

// Decided so: one letter that is written as several counts as them, both ways. It is what Unicode
// calls full case folding, and too much covered is better than too little.
TEST(ExactRanges, LettersThatFoldToSeveralAreFoundByThemAndFindThem) {
    struct Case {
        std::u16string query;
        std::u16string line;
        Ranges expected;
    };
    for (const Case& c : std::vector<Case>{
             {u"strasse", u"STRASSE, Stra\u00dfe", {{0, 7}, {9, 15}}},
             {u"Stra\u00dfe", u"STRASSE, stra\u1e9ee", {{0, 7}, {9, 15}}},
             {u"office", u"o\ufb03ce, of\ufb01ce", {{0, 4}, {6, 11}}},
             {u"\ufb01", u"FI", {{0, 2}}},
             {u"s", u"\u00df", {}}, // half a letter is not there
             {u"f", u"\ufb01", {}},
         }) {
        EXPECT_EQ(exactRanges(c.query, c.line), c.expected)
            << testing::PrintToString(c.query) << " in " << testing::PrintToString(c.line);
    }
}

// The definition read aloud: try every stretch of whole characters from the left.
Ranges triedOneByOne(const std::u16string& query, const std::u16string& line) {
    const auto characters = Characters::split(line);
    Ranges ranges;
    for (std::size_t from = 0; from < characters.size(); ++from) {
        for (std::size_t to = from; to < characters.size(); ++to) {
            const TextRange stretch{characters[from].begin, characters[to].end};
            if (Characters::caseFolded(Characters::textOf(line, stretch)) ==
                Characters::caseFolded(query)) {
                ranges.push_back(stretch);
                from = to;
                break;
            }
        }
    }
    return ranges;
}

TEST(ExactRanges, AgreesWithTryingEveryStretch) {
    const std::vector<std::u16string> pieces{u"a",      u"A",      u"s", u"\u00df",    u"e",
                                             u"\u00e9", u"\u0301", u" ", u"\U0001f600"};
    std::mt19937 generator(7);
    const auto random = [&](std::size_t most) {
        std::u16string text;
        for (std::size_t n = generator() % (most + 1); n > 0; --n) {
            text += pieces[generator() % pieces.size()];
        }
        return text;
    };
    for (int round = 0; round < 3000; ++round) {
        const std::u16string line = random(12);
        const std::u16string query = random(3);
        if (!query.empty()) {
            ASSERT_EQ(exactRanges(query, line), triedOneByOne(query, line))
                << testing::PrintToString(query) << " in " << testing::PrintToString(line);
        }
    }
}

TEST(ExactRanges, LongQueriesAndLinesOfOneLetterEndSoon) {
    const std::u16string line(10000, u'a');
    EXPECT_EQ(exactRanges(std::u16string(5000, u'A'), line), (Ranges{{0, 5000}, {5000, 10000}}));
    EXPECT_TRUE(exactRanges(std::u16string(5000, u'a') + u"b", line).empty());
}

} // namespace
} // namespace murkwell
