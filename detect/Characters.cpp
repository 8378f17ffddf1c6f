#include "detect/Characters.h"

#include <algorithm>
#include <memory>
#include <unicode/brkiter.h>
#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/utf16.h>

namespace murkwell::Characters {
namespace {

std::u16string toStandard(const icu::UnicodeString& text) {
    return {text.getBuffer(), static_cast<std::size_t>(text.length())};
}

// Refers to the text instead of copying it.
icu::UnicodeString aliasOf(std::u16string_view text) {
    return {false, text.data(), static_cast<std::int32_t>(text.size())};
}

bool isAscii(char16_t unit) {
    return unit < 0x80;
}

icu::UnicodeString decomposed(const icu::UnicodeString& text) {
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2* const form = icu::Normalizer2::getNFDInstance(status);
    icu::UnicodeString result = U_SUCCESS(status) ? form->normalize(text, status) : text;
    return U_SUCCESS(status) ? result : text;
}

std::vector<TextRange> oneByOne(std::size_t length) {
    std::vector<TextRange> characters(length);
    for (std::size_t i = 0; i < length; ++i) {
        characters[i] = {i, i + 1};
    }
    return characters;
}

} // namespace

std::u16string fromUtf8(std::string_view text) {
    return toStandard(icu::UnicodeString::fromUTF8(
        icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size()))));
}

std::u16string_view trimmed(std::u16string_view text) {
    // All white space of Unicode lies in the basic plane: code units are enough.
    const auto isWhite = [](char16_t unit) { return u_isUWhiteSpace(unit) != 0; };
    const auto first = std::ranges::find_if_not(text, isWhite);
    const auto last = std::find_if_not(text.rbegin(), text.rend(), isWhite).base();
    return first < last ? std::u16string_view(first, last) : std::u16string_view();
}

std::u16string lowerCased(std::u16string_view text) {
    icu::UnicodeString lower = aliasOf(text);
    lower.toLower(icu::Locale::getRoot());
    return toStandard(lower);
}

std::u16string canonical(std::u16string_view character) {
    if (character.size() == 1 && isAscii(character.front())) {
        return std::u16string(character);
    }
    return toStandard(decomposed(aliasOf(character)));
}

std::u16string caseFolded(std::u16string_view character) {
    // Some characters fold differently before they are decomposed: Unicode, 3.13, D145.
    icu::UnicodeString folded = decomposed(aliasOf(character));
    folded.foldCase(U_FOLD_CASE_DEFAULT);
    return toStandard(decomposed(folded));
}

std::vector<TextRange> split(std::u16string_view text) {
    // A pair of carriage return and line feed is the only ASCII character of two units.
    if (std::ranges::all_of(text, isAscii) && text.find(u'\r') == std::u16string_view::npos) {
        return oneByOne(text.size());
    }
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::BreakIterator> breaks(
        icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
    if (U_FAILURE(status) || !breaks) {
        return oneByOne(text.size());
    }
    const icu::UnicodeString input = aliasOf(text);
    breaks->setText(input);
    std::vector<TextRange> characters;
    std::int32_t begin = breaks->first();
    for (std::int32_t end = breaks->next(); end != icu::BreakIterator::DONE; end = breaks->next()) {
        characters.push_back({static_cast<std::size_t>(begin), static_cast<std::size_t>(end)});
        begin = end;
    }
    return characters;
}

bool isLetterOrNumber(std::u16string_view character) {
    if (character.empty()) {
        return false;
    }
    std::size_t next = 0;
    UChar32 first = 0;
    U16_NEXT(character.data(), next, character.size(), first);
    return u_hasBinaryProperty(first, UCHAR_ALPHABETIC) != 0 ||
           u_getIntPropertyValue(first, UCHAR_NUMERIC_TYPE) != U_NT_NONE;
}

} // namespace murkwell::Characters
