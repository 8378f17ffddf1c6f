#include "platform/ocr/LineReading.h"

#include "core/ParallelFor.h"
#include "platform/ocr/PpOcrStripReader.h"
#include "platform/ocr/Readings.h"
#include "platform/ocr/TesseractStripReader.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace murkwell {
namespace {

constexpr double sure = .9; // Tesseract's confidence above which PP-OCR is not asked

// Confidences above which no line is looked at upside down.
constexpr double onItsFeetForTesseract = .8;
constexpr double onItsFeetForPpOcr = .9; // which reads digits in most that stands on its head

// What was read at a place in that direction.
struct Attempt {
    Direction direction;
    LineStrip strip;
    StripReading tesseract;
    StripReading ppOcr; // empty while nobody doubts Tesseract

    // Of the reader that is more sure.
    [[nodiscard]] double confidence() const {
        return std::max(tesseract.confidence, ppOcr.confidence);
    }

    [[nodiscard]] bool isOnItsFeet() const {
        return tesseract.confidence >= onItsFeetForTesseract ||
               ppOcr.confidence >= onItsFeetForPpOcr;
    }
};

bool isAsciiLetter(const ReadCharacter& character) {
    return character.text.size() == 1 &&
           std::isalpha(static_cast<unsigned char>(character.text[0]));
}

// A dot between two letters: of the name of a host, whose "@" may have been read as a letter.
bool namesHost(const std::vector<ReadCharacter>& characters) {
    for (std::size_t i = 1; i + 1 < characters.size(); ++i) {
        if (characters[i].text == "." && isAsciiLetter(characters[i - 1]) &&
            isAsciiLetter(characters[i + 1])) {
            return true;
        }
    }
    return false;
}

// "@" is read as a letter with a circumflex at times, and then the spaces around it are wrong too.
bool isDoubtful(const StripReading& reading) {
    constexpr std::array<std::string_view, 13> suspicious{"@", "ĝ", "ĉ", "ĥ", "ĵ", "ŝ", "ŭ",
                                                          "Ĝ", "Ĉ", "Ĥ", "Ĵ", "Ŝ", "Ŭ"};
    return reading.confidence < sure || namesHost(reading.characters) ||
           std::ranges::any_of(reading.characters, [&](const ReadCharacter& character) {
               return std::ranges::find(suspicious, character.text) != suspicious.end();
           });
}

class Page {
public:
    Page(const cv::Mat& of, const StripReaders& with) : pixels(of), readers(with) {}

    // None when there is no strip to read there. Throws when no reader could read it.
    [[nodiscard]] std::optional<Attempt> attempt(const cv::RotatedRect& place,
                                                 Direction direction) const {
        auto strip = cutStrip(pixels, place, direction);
        if (!strip) {
            return std::nullopt;
        }
        const auto first = readWithTesseract(*strip, readers.tesseract);
        std::optional<StripReading> second;
        if (!first || isDoubtful(*first)) {
            second = readers.ppOcr.read(*strip);
            if (!first && !second) {
                throw std::runtime_error("no reader could read");
            }
        }
        return Attempt{direction, std::move(*strip), first.value_or(StripReading{}),
                       second.value_or(StripReading{})};
    }

    // The better of both ways when the given one reads badly.
    [[nodiscard]] std::optional<Attempt> bestAttempt(const cv::RotatedRect& place,
                                                     Direction direction) const {
        constexpr double clearly = .1;
        auto best = attempt(place, direction);
        if (best && !best->isOnItsFeet()) {
            auto turned = attempt(place, opposite(direction));
            if (turned && turned->confidence() > best->confidence() + clearly) {
                best = std::move(turned);
            }
        }
        return best;
    }

private:
    const cv::Mat& pixels;
    const StripReaders& readers;
};

double length(const cv::RotatedRect& place) {
    return std::max(place.size.width, place.size.height);
}

bool isShort(const cv::RotatedRect& place) {
    return length(place) < 2.5 * std::min(place.size.width, place.size.height);
}

// One job a place, on all processors; false when one of them could not be done.
template <typename Result>
[[nodiscard]] bool readAll(std::vector<std::optional<Result>>& results, const auto& read) {
    return parallelFor(results.size(), [&](std::size_t i) {
        try {
            results[i] = read(i);
        } catch (const cv::Exception& refused) {
            if (refused.code == cv::Error::StsNoMem) {
                throw; // not to be taken for a place without text
            }
            results[i] = std::nullopt; // sizes that OpenCV refuses
        }
    });
}

bool mostWereTurned(const std::vector<std::optional<Attempt>>& attempts, Direction direction) {
    int turned = 0;
    int right = 0;
    for (const auto& attempt : attempts) {
        if (attempt && attempt->confidence() > 0) {
            ++(attempt->direction == direction ? right : turned);
        }
    }
    return turned > right;
}

// The places that lie level or upright, longest first, so that no processor is left with a long one
// at the end. What is too short to tell goes with most of the others.
struct Group {
    Direction direction;
    std::vector<cv::RotatedRect> places;
};

std::array<Group, 2> grouped(const std::vector<cv::RotatedRect>& places) {
    double lengths[2] = {};
    for (const cv::RotatedRect& place : places) {
        lengths[isVertical(place) ? 1 : 0] += length(place);
    }
    const bool mostUpright = lengths[1] > lengths[0];
    std::array<Group, 2> groups{Group{Direction::right, {}}, Group{Direction::down, {}}};
    for (const cv::RotatedRect& place : places) {
        const bool upright = isShort(place) ? mostUpright : isVertical(place);
        groups[upright ? 1 : 0].places.push_back(place);
    }
    for (Group& group : groups) {
        std::ranges::sort(group.places, std::ranges::greater(), length);
    }
    return groups;
}

// Adds the lines of a group. The longest are read first: when most of them stand on their head, so
// do the others. False when not every place could be looked at.
bool addLines(const Page& page, const Group& group, std::vector<PageLine>& lines) {
    constexpr std::size_t longest = 5;
    const std::vector<cv::RotatedRect>& places = group.places;
    std::vector<std::optional<Attempt>> first(std::min(longest, places.size()));
    if (!readAll(first,
                 [&](std::size_t i) { return page.bestAttempt(places[i], group.direction); })) {
        return false;
    }
    const Direction direction =
        mostWereTurned(first, group.direction) ? opposite(group.direction) : group.direction;
    std::vector<std::optional<PageLine>> read(places.size());
    if (!readAll(read, [&](std::size_t i) {
            const auto best =
                i < first.size() ? std::move(first[i]) : page.bestAttempt(places[i], direction);
            return best ? pageLine(best->strip, best->direction, best->tesseract, best->ppOcr)
                        : std::nullopt;
        })) {
        return false;
    }
    for (auto& line : read) {
        if (line) {
            lines.push_back(std::move(*line));
        }
    }
    return true;
}

} // namespace

std::optional<std::vector<PageLine>> readLines(const cv::Mat& pixels,
                                               const std::vector<cv::RotatedRect>& places,
                                               const StripReaders& readers) {
    const Page page(pixels, readers);
    std::vector<PageLine> lines;
    for (const Group& group : grouped(places)) {
        if (!addLines(page, group, lines)) {
            return std::nullopt;
        }
    }
    return lines;
}

} // namespace murkwell
