#include "detect/ExactSearch.h"

#include "detect/Characters.h"

#include <string>

namespace murkwell {
namespace {

// A line in its folded form, which may be longer or shorter, and the way back.
struct FoldedLine {
    std::u16string text;
    // For each offset of the folded text the offset in the line of the character that begins (or,
    // at the end, stops) there; npos inside a character.
    std::vector<std::size_t> origins;
};

constexpr std::size_t insideCharacter = std::u16string::npos;

FoldedLine fold(std::u16string_view line) {
    FoldedLine folded;
    for (const TextRange& character : Characters::split(line)) {
        const std::u16string form = Characters::caseFolded(Characters::textOf(line, character));
        if (form.empty()) {
            continue;
        }
        folded.text += form;
        folded.origins.push_back(character.begin);
        folded.origins.resize(folded.text.size(), insideCharacter);
    }
    folded.origins.push_back(line.size());
    return folded;
}

} // namespace

std::vector<TextRange> exactRanges(std::u16string_view query, std::u16string_view line) {
    const std::u16string wanted = fold(query).text;
    if (wanted.empty()) {
        return {};
    }
    const FoldedLine folded = fold(line);
    std::vector<TextRange> ranges;
    std::size_t at = folded.text.find(wanted);
    while (at != std::u16string::npos) {
        const std::size_t begin = folded.origins[at];
        const std::size_t end = folded.origins[at + wanted.size()];
        const bool whole = begin != insideCharacter && end != insideCharacter;
        if (whole) {
            ranges.push_back({begin, end});
        }
        at = folded.text.find(wanted, at + (whole ? wanted.size() : 1));
    }
    return ranges;
}

} // namespace murkwell
