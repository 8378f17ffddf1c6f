#include "platform/ocr/Spacing.h"

#include "platform/ocr/LineStrip.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace murkwell {
namespace {

// All numbers were fitted together, on rendered lines of many fonts and sizes: none stands alone.
constexpr double never = std::numeric_limits<double>::infinity();

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

bool isLower(char c) {
    return c >= 'a' && c <= 'z';
}

bool isLetter(char c) {
    return isLower(c) || (c >= 'A' && c <= 'Z') || c == 0;
}

// Stands inside addresses, with letters close to it on both sides.
bool isGlue(char c) {
    return c == '@' || c == '_' || c == '+' || c == '-' || c == '.' || c == '%';
}

bool isGlued(const CharacterGap& gap) {
    return isGlue(gap.after) || (isGlue(gap.before) && gap.before != '.');
}

bool continuesAfterDot(const CharacterGap& gap) {
    return gap.before == '.' && (isDigit(gap.after) || isLower(gap.after));
}

struct Rhythm {
    double medianBlank;
    double medianPitch;
    bool even; // as in a typewriter's font
};

double median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::ranges::nth_element(values, middle);
    return *middle;
}

Rhythm rhythmOf(const std::vector<CharacterGap>& gaps) {
    std::vector<double> blanks;
    std::vector<double> pitches;
    for (const CharacterGap& gap : gaps) {
        blanks.push_back(gap.blank);
        pitches.push_back(gap.pitch);
    }
    const double pitch = std::max(1.0, median(pitches));
    const auto even =
        std::ranges::count_if(pitches, [&](double p) { return std::abs(p - pitch) <= .3 * pitch; });
    return {median(blanks), pitch,
            gaps.size() > 7 && static_cast<double>(even) >= .8 * static_cast<double>(gaps.size())};
}

// Above 0: rather a space.
double evidence(const CharacterGap& gap, const Rhythm& rhythm) {
    double sum = -16.73 + .877 * gap.blank - 1.367 * rhythm.medianBlank +
                 7 * gap.pitch / rhythm.medianPitch +
                 .505 * std::max(0.0, gap.blank - 2 * rhythm.medianBlank);
    if (gap.readSpace) {
        sum += 10.54;
    }
    if (rhythm.even && gap.pitch < 1.45 * rhythm.medianPitch) {
        sum -= 12;
    }
    return sum;
}

// Whether a space that the reader saw is none.
bool isFalseSpace(const CharacterGap& gap, double sum) {
    constexpr double tight = .27 * LineStrip::height;
    constexpr double tightAroundAt = .45 * LineStrip::height;
    const double within = gap.before == '@' || gap.after == '@' ? tightAroundAt : tight;
    return sum < 0 || (isGlued(gap) && gap.after != '+' && gap.blank < within) ||
           (continuesAfterDot(gap) && gap.blank < tight);
}

// The evidence above which there is a space that the reader did not see.
double neededForSpace(const CharacterGap& gap) {
    if (gap.after == '+' && (isLetter(gap.before) || gap.before == ':' || gap.before == '.')) {
        return 5;
    }
    if (isGlued(gap) || continuesAfterDot(gap)) {
        return never;
    }
    if (isDigit(gap.before) && isDigit(gap.after)) {
        return 9;
    }
    const bool letterMeetsDigit = (isDigit(gap.before) && isLetter(gap.after)) ||
                                  (isLetter(gap.before) && isDigit(gap.after));
    return letterMeetsDigit ? .5 : 6;
}

} // namespace

std::vector<bool> decideSpaces(const std::vector<CharacterGap>& gaps) {
    std::vector<bool> spaces;
    if (gaps.size() < 3) { // too few to speak of a rhythm
        for (const CharacterGap& gap : gaps) {
            spaces.push_back(gap.readSpace);
        }
        return spaces;
    }
    const Rhythm rhythm = rhythmOf(gaps);
    for (const CharacterGap& gap : gaps) {
        const double sum = evidence(gap, rhythm);
        spaces.push_back(gap.readSpace ? !isFalseSpace(gap, sum) : sum > neededForSpace(gap));
    }
    return spaces;
}

} // namespace murkwell
