#include "detect/PatternMatcher.h"

#include <unicode/regex.h>
#include <unicode/unistr.h>
#include <unicode/utf16.h>
#include <utility>

namespace murkwell {
namespace {

// False inside a surrogate pair.
bool isCodePointBoundary(std::u16string_view line, std::size_t offset) {
    return offset == 0 || offset >= line.size() || !U16_IS_TRAIL(line[offset]) ||
           !U16_IS_LEAD(line[offset - 1]);
}

} // namespace

struct PatternMatcher::Compiled {
    std::unique_ptr<icu::RegexPattern> pattern;
};

PatternMatcher::PatternMatcher(std::unique_ptr<Compiled> made) : compiled(std::move(made)) {}
PatternMatcher::PatternMatcher(PatternMatcher&&) noexcept = default;
PatternMatcher& PatternMatcher::operator=(PatternMatcher&&) noexcept = default;
PatternMatcher::~PatternMatcher() = default;

std::optional<PatternMatcher> PatternMatcher::compile(std::string_view pattern) {
    UErrorCode status = U_ZERO_ERROR;
    const auto text = icu::UnicodeString::fromUTF8(
        icu::StringPiece(pattern.data(), static_cast<std::int32_t>(pattern.size())));
    std::unique_ptr<icu::RegexPattern> compiled(
        icu::RegexPattern::compile(text, UREGEX_CASE_INSENSITIVE, status));
    if (U_FAILURE(status) || !compiled) {
        return std::nullopt;
    }
    return PatternMatcher(std::make_unique<Compiled>(Compiled{std::move(compiled)}));
}

std::vector<TextRange> PatternMatcher::matches(std::u16string_view line) const {
    UErrorCode status = U_ZERO_ERROR;
    // The matcher refers to its input, which therefore has to stay alive beside it.
    const icu::UnicodeString input(false, line.data(), static_cast<std::int32_t>(line.size()));
    const std::unique_ptr<icu::RegexMatcher> matcher(compiled->pattern->matcher(input, status));
    std::vector<TextRange> found;
    while (U_SUCCESS(status) && matcher && matcher->find(status)) {
        const TextRange range{static_cast<std::size_t>(matcher->start(status)),
                              static_cast<std::size_t>(matcher->end(status))};
        if (U_SUCCESS(status) && isCodePointBoundary(line, range.begin) &&
            isCodePointBoundary(line, range.end)) {
            found.push_back(range);
        }
    }
    return found;
}

} // namespace murkwell
