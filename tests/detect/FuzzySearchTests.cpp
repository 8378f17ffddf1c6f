#include "detect/FuzzySearch.h"

#include "detect/Characters.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

namespace murkwell {
namespace {

std::vector<std::u16string> texts(const std::u16string& line,
                                  const std::vector<TextRange>& ranges) {
    std::vector<std::u16string> result;
    for (const TextRange& range : ranges) {
        result.push_back(line.substr(range.begin, range.end - range.begin));
    }
    return result;
}

TEST(AlphanumericTokens, AreSplitByEverythingElse) {
    struct Case {
        std::u16string text;
        std::vector<std::u16string> tokens;
    };
    for (const Case& c : std::vector<Case>{
             {u"", {}},
             {u"--- ...", {}},
             {u"555-1234", {u"555", u"1234"}},
             {u" jo_doe@mail.org ", {u"jo", u"doe", u"mail", u"org"}},
             {u"cafe\u0301 \u00bd\u00b2", {u"cafe\u0301", u"\u00bd\u00b2"}},
             {u"\u0301ab", {u"ab"}}, // a mark without a letter below it
             {u"a\U0001f600b", {u"a", u"b"}},
             {u"O'Brien", {u"O", u"Brien"}},
         }) {
        EXPECT_EQ(texts(c.text, alphanumericTokens(c.text)), c.tokens)
            << testing::PrintToString(c.text);
    }
}

TEST(AllowedEdits, GrowWithTheQuery) {
    for (std::size_t length = 0; length < 200; ++length) {
        const auto rounded = std::lround(static_cast<double>(length) / 4);
        EXPECT_EQ(allowedEdits(length), static_cast<std::size_t>(std::max(1L, rounded))) << length;
    }
}

TEST(Levenshtein, CountsUserPerceivedCharacters) {
    EXPECT_EQ(levenshtein(u"", u""), 0U);
    EXPECT_EQ(levenshtein(u"", u"abc"), 3U);
    EXPECT_EQ(levenshtein(u"abc", u""), 3U);
    EXPECT_EQ(levenshtein(u"1234", u"1243"), 2U); // no transposition
    EXPECT_EQ(levenshtein(u"kitten", u"sitting"), 3U);
    EXPECT_EQ(levenshtein(u"caf\u00e9", u"cafe\u0301"), 0U);
    EXPECT_EQ(levenshtein(u"cafe", u"cafe\u0301\u0302"), 1U);
    EXPECT_EQ(levenshtein(u"\U0001f469\u200d\U0001f467", u""), 1U);
}

using Clusters = std::vector<std::u16string>;

Clusters clusters(const std::u16string& text) {
    Clusters result;
    for (const TextRange& range : Characters::split(text)) {
        result.push_back(Characters::canonical(Characters::textOf(text, range)));
    }
    return result;
}

// The recursive definition, tried out in full; for short words only.
std::size_t byDefinition(const Clusters& a, const Clusters& b, std::size_t i, std::size_t j) {
    if (i == a.size() || j == b.size()) {
        return a.size() - i + b.size() - j;
    }
    if (a[i] == b[j]) {
        return byDefinition(a, b, i + 1, j + 1);
    }
    return 1 + std::min({byDefinition(a, b, i + 1, j), byDefinition(a, b, i, j + 1),
                         byDefinition(a, b, i + 1, j + 1)});
}

std::size_t byDefinition(const std::u16string& a, const std::u16string& b) {
    return byDefinition(clusters(a), clusters(b), 0, 0);
}

std::u16string randomText(std::mt19937& generator, const Clusters& pieces, std::size_t most) {
    std::u16string text;
    for (std::size_t n = generator() % (most + 1); n > 0; --n) {
        text += pieces[generator() % pieces.size()];
    }
    return text;
}

TEST(Levenshtein, AgreesWithTheDefinition) {
    std::mt19937 generator(3);
    for (int round = 0; round < 2000; ++round) {
        const Clusters pieces{u"a", u"b", u"e\u0301", u"\u00e9", u"\U0001f600"};
        const std::u16string a = randomText(generator, pieces, 7);
        const std::u16string b = randomText(generator, pieces, 7);
        ASSERT_EQ(levenshtein(a, b), byDefinition(a, b))
            << testing::PrintToString(a) << " " << testing::PrintToString(b);
    }
}

TEST(FuzzyRanges, TableOfWordsCloseEnough) {
    struct Case {
        std::u16string query;
        std::u16string line;
        std::vector<std::u16string> found;
    };
    for (const Case& c : std::vector<Case>{
             {u"Smith", u"smith Smyth Smit Smythe", {u"smith", u"Smyth", u"Smit"}},
             {u"a", u"I at to a ab cd \u00e9 x", {u"I", u"at", u"a", u"ab", u"\u00e9", u"x"}},
             {u"555-1234", u"call 555-1243", {u"555"}},
             {u"---", u"a --- b", {}},
             {u"\u0301\u0302", u"cafe\u0301", {}},
             {u".*(", u"a.*(b", {}},
             {u"John Smith", u"Smith, then J0hn; Jane", {u"Smith", u"J0hn"}},
             {u"STRA\u00dfE", u"stra\u00dfe strasse", {u"stra\u00dfe", u"strasse"}},
             {u"caf\u00e9", u"cafe\u0301 cafes cafe", {u"cafe\u0301", u"cafe"}},
             {u"Smith", u"", {}},
         }) {
        EXPECT_EQ(texts(c.line, fuzzyRanges(c.query, c.line)), c.found)
            << testing::PrintToString(c.query) << " in " << testing::PrintToString(c.line);
    }
}

TEST(FuzzyRanges, AgreesWithComparingEveryPair) {
    std::mt19937 generator(11);
    const Clusters pieces{u"a", u"B", u"b", u"\u00c9", u"e\u0301", u"1", u" ", u"a", u"b", u"-"};
    for (int round = 0; round < 800; ++round) {
        const std::u16string query = randomText(generator, pieces, 14);
        const std::u16string line = randomText(generator, pieces, 20);
        std::vector<TextRange> expected;
        for (const TextRange& token : alphanumericTokens(line)) {
            const auto word = Characters::lowerCased(Characters::textOf(line, token));
            const bool close = std::ranges::any_of(alphanumericTokens(query), [&](TextRange k) {
                const auto wanted = Characters::lowerCased(Characters::textOf(query, k));
                return byDefinition(word, wanted) <= allowedEdits(clusters(wanted).size());
            });
            if (close) {
                expected.push_back(token);
            }
        }
        ASSERT_EQ(fuzzyRanges(query, line), expected)
            << testing::PrintToString(query) << " in " << testing::PrintToString(line);
    }
}

TEST(FuzzyRanges, LongWordsAreComparedInFull) {
    const std::u16string word(2000, u'a');
    EXPECT_EQ(fuzzyRanges(word, std::u16string(1500, u'a')).size(), 1U);
    EXPECT_TRUE(fuzzyRanges(word, std::u16string(1499, u'a')).empty());
}

} // namespace
} // namespace murkwell
