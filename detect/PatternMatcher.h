// Finds what one regular expression matches in lines of text.
#pragma once

#include "detect/TextRange.h"

#include <memory>
#include <optional>
#include <string_view>
#include <vector>

namespace murkwell {

// Compiled once, used for many lines, by one thread at a time.
class PatternMatcher {
public:
    // The expression is written in ICU's dialect and matched without regard to letter case. None
    // when it does not compile.
    [[nodiscard]] static std::optional<PatternMatcher> compile(std::string_view pattern);

    PatternMatcher(PatternMatcher&&) noexcept;
    PatternMatcher& operator=(PatternMatcher&&) noexcept;
    ~PatternMatcher();

    // What the expression matches from left to right, each match beginning at or after the end of
    // the one before. A match that would part the halves of a code point is left out.
    [[nodiscard]] std::vector<TextRange> matches(std::u16string_view line) const;

private:
    struct Compiled;

    explicit PatternMatcher(std::unique_ptr<Compiled> compiled);

    std::unique_ptr<Compiled> compiled;
};

} // namespace murkwell
