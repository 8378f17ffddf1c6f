// Where a text as typed stands in a line, whatever its letter case.
#pragma once

#include "detect/TextRange.h"

#include <string_view>
#include <vector>

namespace murkwell {

// From left to right, never overlapping. Characters are equal when they are canonically equivalent
// after full case folding: "ss" finds "ß" and "fi" the ligature "ﬁ", which is more than letter case
// alone and meant to be. Accents, widths and superscripts count. An occurrence begins and ends
// between characters, but may do so inside a word. An empty query is nowhere.
[[nodiscard]] std::vector<TextRange> exactRanges(std::u16string_view query,
                                                 std::u16string_view line);

} // namespace murkwell
