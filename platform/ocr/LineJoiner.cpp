#include "platform/ocr/LineJoiner.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

namespace murkwell {
namespace {

// Shares of the line height.
constexpr double widestGap = .8;
constexpr double widestDigitGap = 2;
constexpr double deepestOverlap = .6;
constexpr double largestStep = .3; // of the middle of the line
constexpr double largestGrowth = .35;

cv::Point2d unit(const cv::Point2d& vector) {
    const double length = cv::norm(vector);
    return length > 0 ? vector / length : cv::Point2d(1, 0);
}

double length(const PageLine& line) {
    return cv::norm(line.end - line.start);
}

// The way the two run. Short pieces lean by chance: the longer one knows.
cv::Point2d wayOf(const PageLine& line, const PageLine& next) {
    return length(line) >= length(next) ? unit(line.end - line.start) : unit(next.end - next.start);
}

bool continues(const PageLine& line, const PageLine& next, double gapAllowed) {
    const double smaller = std::min(line.height, next.height);
    const double larger = std::max(line.height, next.height);
    const cv::Point2d way = wayOf(line, next);
    const cv::Point2d step = next.start - line.end;
    const double gap = step.dot(way);
    return line.direction == next.direction && larger - smaller < largestGrowth * larger &&
           std::abs(way.cross(step)) < largestStep * smaller && gap < gapAllowed * smaller &&
           gap > -deepestOverlap * next.height && (next.end - line.end).dot(way) > 0;
}

// Between the ends of the two, as high as both.
cv::Rect2d gapBox(const PageLine& line, const PageLine& next) {
    const cv::Point2d way = wayOf(line, next);
    const cv::Point2d reach =
        cv::Point2d(std::abs(way.y), std::abs(way.x)) * (std::max(line.height, next.height) / 2);
    const cv::Point2d from(std::min(line.end.x, next.start.x), std::min(line.end.y, next.start.y));
    const cv::Point2d to(std::max(line.end.x, next.start.x), std::max(line.end.y, next.start.y));
    return {from - reach, to + reach};
}

void append(PageLine& line, const PageLine& next) {
    const cv::Rect2d gap = gapBox(line, next);
    for (std::size_t i = 0; i < line.texts.size(); ++i) {
        LineText& text = line.texts[i];
        text.text += ' ' + next.texts[i].text;
        text.characterBoxes.push_back(gap);
        text.characterBoxes.insert(text.characterBoxes.end(), next.texts[i].characterBoxes.begin(),
                                   next.texts[i].characterBoxes.end());
    }
    line.box |= next.box;
    line.end = next.end;
}

// How far along the page a place lies for lines of that direction.
double along(const cv::Point2d& place, Direction direction) {
    switch (direction) {
    case Direction::right:
        return place.x;
    case Direction::down:
        return place.y;
    case Direction::left:
        return -place.x;
    case Direction::up:
        break;
    }
    return -place.y;
}

struct Joined {
    PageLine line;
    std::size_t pieces = 1;
};

std::vector<Joined> join(std::vector<PageLine> pieces, double gapAllowed) {
    std::ranges::sort(pieces, {}, [](const PageLine& piece) {
        return std::pair(piece.direction, along(piece.start, piece.direction));
    });
    std::vector<Joined> lines;
    std::vector<bool> used(pieces.size());
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        if (used[i]) {
            continue;
        }
        Joined joined{std::move(pieces[i])};
        PageLine& line = joined.line;
        for (std::size_t j = i + 1; j < pieces.size(); ++j) {
            const PageLine& next = pieces[j];
            if (next.direction != line.direction ||
                along(next.start, next.direction) - along(line.end, line.direction) >
                    3 * gapAllowed * line.height) {
                break; // and all that follow lie further on
            }
            if (!used[j] && continues(line, next, gapAllowed)) {
                append(line, next);
                ++joined.pieces;
                used[j] = true;
            }
        }
        lines.push_back(std::move(joined));
    }
    return lines;
}

// Digits and what stands between their groups.
bool isDigits(const PageLine& line) {
    const std::string& text = line.texts.front().text;
    return text.find_first_not_of("0123456789 .-()/") == std::string::npos;
}

} // namespace

std::vector<PageLine> joinLines(std::vector<PageLine> pieces) {
    std::vector<PageLine> lines;
    for (Joined& joined : join(std::move(pieces), widestGap)) {
        lines.push_back(std::move(joined.line));
    }
    std::vector<PageLine> digits;
    std::ranges::copy_if(lines, std::back_inserter(digits), isDigits);
    for (Joined& joined : join(std::move(digits), widestDigitGap)) {
        if (joined.pieces > 1) {
            lines.push_back(std::move(joined.line));
        }
    }
    std::ranges::stable_sort(lines, {}, [](const PageLine& line) { return line.box.y; });
    return lines;
}

} // namespace murkwell
