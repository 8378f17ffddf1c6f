// Text as its reader sees it: extended grapheme clusters, of which canonically equivalent ones are
// equal.
#pragma once

#include "detect/TextRange.h"

#include <string>
#include <string_view>
#include <vector>

namespace murkwell::Characters {

// UTF-16 of UTF-8; what is not valid becomes U+FFFD.
[[nodiscard]] std::u16string fromUtf8(std::string_view text);

// Without white space and line breaks (the Unicode property White_Space) at both ends.
[[nodiscard]] std::u16string_view trimmed(std::u16string_view text);

// Full lower-casing, independent of locale.
[[nodiscard]] std::u16string lowerCased(std::u16string_view text);

// A form in which two characters are equal exactly when they are canonically equivalent.
[[nodiscard]] std::u16string canonical(std::u16string_view character);

// As canonical(), and equal also when only letter case differs (full case folding, no locale).
[[nodiscard]] std::u16string caseFolded(std::u16string_view character);

// The characters in order; together they are the whole text.
[[nodiscard]] std::vector<TextRange> split(std::u16string_view text);

[[nodiscard]] inline std::u16string_view textOf(std::u16string_view text, TextRange range) {
    return text.substr(range.begin, range.end - range.begin);
}

// Whether the first code point is a letter (Alphabetic) or has a numeric type.
[[nodiscard]] bool isLetterOrNumber(std::u16string_view character);

} // namespace murkwell::Characters
