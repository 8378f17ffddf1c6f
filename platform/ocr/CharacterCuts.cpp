#include "platform/ocr/CharacterCuts.h"

#include "platform/ocr/InkProfile.h"
#include "platform/ocr/Spacing.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

namespace murkwell {
namespace {

constexpr double height = LineStrip::height;

struct Glyph {
    PlacedCharacter placed;
    double centre;
};

std::vector<Glyph> visibleOf(const std::vector<ReadCharacter>& read) {
    std::vector<Glyph> glyphs;
    bool space = false;
    for (const ReadCharacter& next : read) {
        if (next.text == " ") {
            space = !glyphs.empty();
            continue;
        }
        glyphs.push_back({{next.text, next.nearly, 0, 0, space, space}, next.centre});
        space = false;
    }
    return glyphs;
}

// As gaps know characters.
char asciiOf(const std::string& text) {
    const bool ascii = text.size() == 1 && static_cast<unsigned char>(text.front()) < 0x80;
    return ascii ? text.front() : '\0';
}

// Follows the ink from a centre outward to where a wide blank begins.
double outerEdge(const InkProfile& ink, double centre, int direction, double pitch) {
    int edge = static_cast<int>(centre);
    int blank = 0;
    for (int x = edge; x >= 0 && x < ink.columns(); x += direction) {
        if (!ink.isBlank(x)) {
            edge = x;
            blank = 0;
        } else if (++blank > height * .25) {
            break;
        }
        if (std::abs(x - centre) > 1.6 * pitch + height * .3) {
            break;
        }
    }
    return direction > 0 ? edge + 1 : edge;
}

// Between touching characters: the column with least ink, rather in the middle.
int thinnestColumn(const InkProfile& ink, double from, double to) {
    const double middle = (from + to) / 2;
    int best = static_cast<int>(middle);
    int least = std::numeric_limits<int>::max();
    for (int x = std::max(0, static_cast<int>(from));
         x <= static_cast<int>(to) && x < ink.columns(); ++x) {
        const int cost = static_cast<int>(ink.at(x) * 4 + std::abs(x - middle) * .5);
        if (cost < least) {
            least = cost;
            best = x;
        }
    }
    return best;
}

// The two profiles of a line: faint ink closes gaps that plain ink leaves open.
struct Ink {
    explicit Ink(const cv::Mat& line) : faint(line, .3), plain(line, .5) {}

    InkProfile faint;
    InkProfile plain;
};

// Cuts two neighbours apart and tells about the gap between them.
CharacterGap cutBetween(Glyph& before, Glyph& after, const Ink& ink) {
    constexpr double margin = 3; // columns that a character keeps of a wide gap
    const auto plainBlank = ink.plain.widestBlank(before.centre, after.centre);
    auto blank = ink.faint.widestBlank(before.centre, after.centre);
    if (!blank) {
        blank = plainBlank;
    }
    const double cut = blank ? (blank->begin + blank->end) / 2.0
                             : thinnestColumn(ink.faint, before.centre, after.centre);
    before.placed.right = cut;
    after.placed.left = cut;
    if (blank && (after.placed.spaceRead || blank->width() > .3 * height)) {
        before.placed.right = std::min(cut, blank->begin + margin);
        after.placed.left = std::max(cut, blank->end - margin);
    }
    return {asciiOf(before.placed.text), asciiOf(after.placed.text),
            static_cast<double>(plainBlank ? plainBlank->width() : 0), after.centre - before.centre,
            after.placed.spaceRead};
}

} // namespace

std::vector<PlacedCharacter> placeCharacters(const std::vector<ReadCharacter>& read,
                                             const cv::Mat& line) {
    std::vector<Glyph> glyphs = visibleOf(read);
    if (glyphs.empty()) {
        return {};
    }
    const Ink ink(line);
    Glyph& first = glyphs.front();
    Glyph& last = glyphs.back();
    const double steps = static_cast<double>(glyphs.size()) - 1;
    const double pitch = steps > 0 ? (last.centre - first.centre) / steps : height / 2;
    first.placed.left =
        std::min(outerEdge(ink.faint, first.centre, -1, pitch), first.centre - .3 * pitch);
    last.placed.right =
        std::max(outerEdge(ink.faint, last.centre, 1, pitch), last.centre + .3 * pitch);

    std::vector<CharacterGap> gaps;
    for (std::size_t i = 0; i + 1 < glyphs.size(); ++i) {
        gaps.push_back(cutBetween(glyphs[i], glyphs[i + 1], ink));
    }
    const std::vector<bool> spaces = decideSpaces(gaps);
    for (std::size_t i = 0; i < gaps.size(); ++i) {
        glyphs[i + 1].placed.spaceDecided = spaces[i];
    }

    std::vector<PlacedCharacter> placed;
    for (Glyph& glyph : glyphs) {
        placed.push_back(std::move(glyph.placed));
    }
    return placed;
}

} // namespace murkwell
