// Which words of a line are close to a word that was typed: misspellings and slips of recognition.
#pragma once

#include "detect/TextRange.h"

#include <cstddef>
#include <string_view>
#include <vector>

namespace murkwell {

// Maximal runs of letters and numbers.
[[nodiscard]] std::vector<TextRange> alphanumericTokens(std::u16string_view text);

// Fewest insertions, deletions and replacements of one character each that turn one into the other.
[[nodiscard]] std::size_t levenshtein(std::u16string_view a, std::u16string_view b);

// Edits that a word may be away from a typed word of this many characters.
[[nodiscard]] std::size_t allowedEdits(std::size_t characters);

// The tokens of the line that are within the allowed edits of at least one token of the query,
// letter case apart, in their order. Each stands alone: the query's tokens need not be together.
[[nodiscard]] std::vector<TextRange> fuzzyRanges(std::u16string_view query,
                                                 std::u16string_view line);

} // namespace murkwell
