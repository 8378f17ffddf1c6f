#include "detect/FuzzySearch.h"

#include "detect/Characters.h"

#include <algorithm>
#include <map>
#include <optional>
#include <string>

namespace murkwell {
namespace {

// A word as numbers, one for each of its characters.
using Word = std::vector<std::size_t>;

// Gives equal characters equal numbers, so that words compare quickly.
class Alphabet {
public:
    Word spell(std::u16string_view text) {
        Word word;
        for (const TextRange& character : Characters::split(text)) {
            word.push_back(numberOf(Characters::textOf(text, character)));
        }
        return word;
    }

private:
    std::size_t numberOf(std::u16string_view character) {
        if (character.size() == 1 && character.front() < asciiEnd) {
            return character.front();
        }
        return numbers.try_emplace(Characters::canonical(character), asciiEnd + numbers.size())
            .first->second;
    }

    static constexpr std::size_t asciiEnd = 0x80;
    std::map<std::u16string, std::size_t> numbers;
};

// The edit distance, or none when it is above the limit. Only the diagonal band of the table in
// which a path of at most that many edits can run is filled.
std::optional<std::size_t> distanceWithin(const Word& a, const Word& b, std::size_t limit) {
    if (std::max(a.size(), b.size()) - std::min(a.size(), b.size()) > limit) {
        return std::nullopt;
    }
    const std::size_t above = limit + 1; // stands for every larger distance
    std::vector<std::size_t> row(b.size() + 1, above);
    for (std::size_t j = 0; j <= std::min(limit, b.size()); ++j) {
        row[j] = j;
    }
    for (std::size_t i = 1; i <= a.size(); ++i) {
        const std::size_t first = i > limit ? i - limit : 0;
        const std::size_t last = std::min(b.size(), i + limit);
        std::size_t diagonal = first > 0 ? row[first - 1] : above;
        std::size_t left = above;
        std::size_t best = above;
        if (first > 0) {
            row[first - 1] = above;
        }
        for (std::size_t j = first; j <= last; ++j) {
            const std::size_t replaced = j == 0 ? above : diagonal + (a[i - 1] == b[j - 1] ? 0 : 1);
            diagonal = row[j];
            row[j] = left = std::min({replaced, left + 1, diagonal + 1, above});
            best = std::min(best, left);
        }
        if (best == above) {
            return std::nullopt;
        }
    }
    return row[b.size()] <= limit ? std::optional(row[b.size()]) : std::nullopt;
}

Word lowerCaseWord(std::u16string_view text, TextRange token, Alphabet& alphabet) {
    return alphabet.spell(Characters::lowerCased(Characters::textOf(text, token)));
}

} // namespace

std::vector<TextRange> alphanumericTokens(std::u16string_view text) {
    std::vector<TextRange> tokens;
    bool inside = false;
    for (const TextRange& character : Characters::split(text)) {
        const bool belongs = Characters::isLetterOrNumber(Characters::textOf(text, character));
        if (belongs && inside) {
            tokens.back().end = character.end;
        } else if (belongs) {
            tokens.push_back(character);
        }
        inside = belongs;
    }
    return tokens;
}

std::size_t levenshtein(std::u16string_view a, std::u16string_view b) {
    Alphabet alphabet;
    const Word first = alphabet.spell(a);
    const Word second = alphabet.spell(b);
    // No distance is above the length of the longer word.
    return distanceWithin(first, second, std::max(first.size(), second.size())).value_or(0);
}

std::size_t allowedEdits(std::size_t characters) {
    // A quarter of the length, halves rounded up, and never none.
    return std::max<std::size_t>(1, (characters + 2) / 4);
}

std::vector<TextRange> fuzzyRanges(std::u16string_view query, std::u16string_view line) {
    Alphabet alphabet;
    std::vector<Word> wanted;
    for (const TextRange& token : alphanumericTokens(query)) {
        wanted.push_back(lowerCaseWord(query, token, alphabet));
    }
    if (wanted.empty()) {
        return {};
    }
    // The order in which they are tried does not matter, and a word said twice is asked for once.
    std::ranges::sort(wanted);
    wanted.erase(std::unique(wanted.begin(), wanted.end()), wanted.end());

    std::vector<TextRange> ranges = alphanumericTokens(line);
    std::erase_if(ranges, [&](const TextRange& token) {
        const Word word = lowerCaseWord(line, token, alphabet);
        return std::ranges::none_of(wanted, [&](const Word& close) {
            return distanceWithin(word, close, allowedEdits(close.size())).has_value();
        });
    });
    return ranges;
}

} // namespace murkwell
