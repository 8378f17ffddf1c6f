#include "platform/ocr/Readings.h"

#include "platform/ocr/CharacterCuts.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <string_view>
#include <utility>

namespace murkwell {
namespace {

using Placed = std::vector<PlacedCharacter>;

struct Replacement {
    std::string_view read;
    std::string_view meant;
};

// Tesseract's Latin script was learned from set books. In what people type, and in numbers and
// addresses, these stand for what has a key of its own.
constexpr std::array replacements{
    Replacement{"—", "-"},  Replacement{"–", "-"},
    Replacement{"−", "-"},                         // a hyphen between digits
    Replacement{"’", "'"},  Replacement{"‘", "'"}, // an apostrophe in a name
    Replacement{"“", "\""}, Replacement{"”", "\""},
    Replacement{"®", "@"},  Replacement{"©", "@"},  // a letter in a ring
    Replacement{"ﬁ", "fi"}, Replacement{"ﬂ", "fl"}, // nobody types ligatures
};

Placed withReplacements(Placed characters) {
    for (PlacedCharacter& character : characters) {
        const auto known = std::ranges::find(replacements, character.text, &Replacement::read);
        if (known != replacements.end()) {
            character.text = known->meant;
        }
    }
    return characters;
}

Placed withNearMisses(Placed characters) {
    for (PlacedCharacter& character : characters) {
        if (!character.nearly.empty()) {
            character.text = character.nearly;
        }
    }
    return characters;
}

bool isDigit(std::string_view text) {
    return text.size() == 1 && text[0] >= '1' && text[0] <= '9';
}

// Of Latin script, or the apostrophe that an initial stands before.
bool isOfWord(std::string_view text) {
    constexpr unsigned char firstLatinLead = 0xC3; // of UTF-8, U+00C0 and on
    constexpr unsigned char lastLatinLead = 0xC9;  // up to U+024F
    const auto lead = static_cast<unsigned char>(text.front());
    return text == "'" || std::isalpha(lead) || (lead >= firstLatinLead && lead <= lastLatinLead);
}

bool isNought(const PlacedCharacter& character) {
    return character.text == "0" || character.text == "O" || character.text == "o";
}

// Whether what touches either end of a run, with no space between, is of that kind.
bool touches(const Placed& characters, std::size_t begin, std::size_t end,
             bool (*kind)(std::string_view)) {
    return (begin > 0 && !characters[begin].spaceDecided && kind(characters[begin - 1].text)) ||
           (end < characters.size() && !characters[end].spaceDecided && kind(characters[end].text));
}

// "0" and "O" look alike: beside letters it is the one, beside digits the other. A run of them
// goes by both its ends, and stays as it was read when they disagree.
Placed withNoughtsOfTheirKind(Placed characters) {
    for (std::size_t begin = 0, end = 0; begin < characters.size(); begin = end) {
        end = begin + 1;
        if (!isNought(characters[begin])) {
            continue;
        }
        while (end < characters.size() && isNought(characters[end]) &&
               !characters[end].spaceDecided) {
            ++end;
        }
        const bool word = touches(characters, begin, end, isOfWord);
        const bool number = touches(characters, begin, end, isDigit);
        for (std::size_t i = begin; i < end && word != number; ++i) {
            if (number) {
                characters[i].text = "0";
            } else if (characters[i].text == "0") {
                characters[i].text = "O";
            }
        }
    }
    return characters;
}

std::size_t codePoints(std::string_view utf8) {
    return static_cast<std::size_t>(std::ranges::count_if(
        utf8, [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0) != 0x80; }));
}

LineText textOf(const Placed& characters, bool PlacedCharacter::*space, const LineStrip& strip,
                Direction direction) {
    // Strokes are thinner than what marks them: boxes keep a little of what is around.
    const double along = 1;
    const double across = 1 + .08 * strip.lineHeight();
    const cv::Point2d reach =
        isUpright(direction) ? cv::Point2d(across, along) : cv::Point2d(along, across);
    const auto boxOf = [&](double left, double right) {
        const cv::Rect2d box = strip.pageBox(left, right);
        return cv::Rect2d(box.tl() - reach, box.br() + reach);
    };
    LineText line;
    double end = 0;
    for (const PlacedCharacter& character : characters) {
        if (character.*space) {
            line.text += ' ';
            line.characterBoxes.push_back(boxOf(end, character.left));
        }
        line.text += character.text;
        line.characterBoxes.insert(line.characterBoxes.end(), codePoints(character.text),
                                   boxOf(character.left, character.right));
        end = character.right;
    }
    return line;
}

} // namespace

std::optional<PageLine> pageLine(const LineStrip& strip, Direction direction,
                                 const StripReading& tesseract, const StripReading& ppOcr) {
    const Placed raw = placeCharacters(tesseract.characters, strip.line());
    const Placed first = withReplacements(raw);
    const Placed second = placeCharacters(ppOcr.characters, strip.line());
    if (first.empty() && second.empty()) {
        return std::nullopt;
    }
    const Placed& one = first.empty() ? second : first;
    const Placed& other = second.empty() ? first : second;
    const auto text = [&](const Placed& characters, bool PlacedCharacter::*space) {
        return textOf(characters, space, strip, direction);
    };
    const auto& c = strip.corners;
    return PageLine{
        {text(one, &PlacedCharacter::spaceDecided), text(one, &PlacedCharacter::spaceRead),
         text(first.empty() ? second : raw, &PlacedCharacter::spaceRead),
         text(other, &PlacedCharacter::spaceDecided), text(other, &PlacedCharacter::spaceRead),
         text(withNearMisses(other), &PlacedCharacter::spaceDecided),
         text(withNoughtsOfTheirKind(one), &PlacedCharacter::spaceDecided)},
        strip.pageBox(0, strip.image.cols),
        (c[0] + c[3]) / 2,
        (c[1] + c[2]) / 2,
        strip.lineHeight(),
        direction};
}

} // namespace murkwell
