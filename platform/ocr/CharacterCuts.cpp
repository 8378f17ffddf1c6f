#include "platform/ocr/CharacterCuts.h"

#include "platform/ocr/InkProfile.h"
#include "platform/ocr/Spacing.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace murkwell {
namespace {

constexpr double height = LineStrip::height;

// A visible character between its two cuts.
struct Glyph {
    char character;
    double centre;
    bool spaceBefore; // as the reader saw it
    double left = 0;
    double right = 0;
};

std::vector<Glyph> visibleOf(const std::vector<ReadCharacter>& read) {
    std::vector<Glyph> glyphs;
    bool space = false;
    for (const ReadCharacter& next : read) {
        if (next.character == ' ') {
            space = true;
            continue;
        }
        glyphs.push_back({next.character, next.centre, space});
        space = false;
    }
    return glyphs;
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

// The two profiles of a strip: faint ink closes gaps that plain ink leaves open.
struct Ink {
    explicit Ink(const cv::Mat& strip) : faint(strip, .3), plain(strip, .5) {}

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
    before.right = cut;
    after.left = cut;
    if (blank && (after.spaceBefore || blank->width() > .3 * height)) {
        before.right = std::min(cut, blank->begin + margin);
        after.left = std::max(cut, blank->end - margin);
    }
    return {before.character, after.character,
            static_cast<double>(plainBlank ? plainBlank->width() : 0), after.centre - before.centre,
            after.spaceBefore};
}

} // namespace

std::vector<PlacedCharacter> placeCharacters(const std::vector<ReadCharacter>& read,
                                             const cv::Mat& strip) {
    std::vector<Glyph> glyphs = visibleOf(read);
    if (glyphs.empty()) {
        return {};
    }
    const Ink ink(strip);
    Glyph& first = glyphs.front();
    Glyph& last = glyphs.back();
    const double steps = static_cast<double>(glyphs.size()) - 1;
    const double pitch = steps > 0 ? (last.centre - first.centre) / steps : height / 2;
    first.left = std::min(outerEdge(ink.faint, first.centre, -1, pitch), first.centre - .3 * pitch);
    last.right = std::max(outerEdge(ink.faint, last.centre, 1, pitch), last.centre + .3 * pitch);

    std::vector<CharacterGap> gaps;
    for (std::size_t i = 0; i + 1 < glyphs.size(); ++i) {
        gaps.push_back(cutBetween(glyphs[i], glyphs[i + 1], ink));
    }
    const std::vector<bool> spaces = decideSpaces(gaps);

    std::vector<PlacedCharacter> placed;
    for (std::size_t i = 0; i < glyphs.size(); ++i) {
        if (i > 0 && spaces[i - 1]) {
            placed.push_back({' ', glyphs[i - 1].right, glyphs[i].left});
        }
        placed.push_back({glyphs[i].character, glyphs[i].left, glyphs[i].right});
    }
    return placed;
}

} // namespace murkwell
