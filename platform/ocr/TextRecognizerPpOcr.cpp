#include "platform/ocr/TextRecognizerPpOcr.h"

#include "core/ParallelFor.h"
#include "platform/ocr/CharacterCuts.h"
#include "platform/ocr/LineFinder.h"
#include "platform/ocr/LineJoiner.h"
#include "platform/ocr/LineReader.h"
#include "platform/ocr/LineStrip.h"
#include "platform/vision/InstalledFiles.h"
#include "platform/vision/OnnxSession.h"
#include "platform/vision/PixelMatrix.h"

#include <algorithm>
#include <exception>
#include <fstream>
#include <mutex>
#include <numeric>
#include <stdexcept>
#include <string>
#include <utility>

namespace murkwell {

struct TextRecognizerPpOcr::Networks {
    std::once_flag once;
    std::unique_ptr<OnnxSession> finder;
    std::unique_ptr<OnnxSession> reader;
    std::string alphabet; // of the reader's outputs, the blank left out

    [[nodiscard]] bool complete() const { return finder && reader && !alphabet.empty(); }
};

namespace {

constexpr const char* linesModel = "text-lines.onnx";
constexpr const char* readerModel = "text-reader.onnx";
constexpr const char* alphabetFile = "characters.txt";

std::unique_ptr<OnnxSession> loadNetwork(const char* name, int threads) {
    const auto file = installedModel(name);
    return file ? OnnxSession::load(*file, 1, threads) : nullptr;
}

// One character a line. Empty when the file is missing or holds anything else.
std::string loadAlphabet() {
    const auto file = installedModel(alphabetFile);
    std::ifstream in(file.value_or(std::filesystem::path()));
    std::string alphabet;
    for (std::string line; std::getline(in, line);) {
        if (line.size() != 1) {
            return {};
        }
        alphabet += line;
    }
    return alphabet;
}

struct Reader {
    OnnxSession& network;
    const std::string& alphabet;
};

struct ReadLine {
    PageLine line;
    double confidence; // mean over the characters the network saw
};

PageLine pageLine(const LineStrip& strip, const std::vector<PlacedCharacter>& characters) {
    // Strokes are thinner than what marks them: boxes keep a little of what is around.
    const double along = 1;
    const double across = 1 + .08 * strip.lineHeight();
    const cv::Point2d reach =
        strip.vertical ? cv::Point2d(across, along) : cv::Point2d(along, across);

    const auto& c = strip.corners;
    PageLine line{{},
                  strip.pageBox(0, strip.image.cols),
                  {},
                  (c[0] + c[3]) / 2,
                  (c[1] + c[2]) / 2,
                  strip.lineHeight(),
                  strip.vertical};
    for (const PlacedCharacter& placed : characters) {
        cv::Rect2d box = strip.pageBox(placed.left, placed.right);
        line.text += placed.character;
        line.characterBoxes.emplace_back(box.tl() - reach, box.br() + reach);
    }
    return line;
}

// None when there is nothing to read. Throws when the network fails.
std::optional<ReadLine> read(const cv::Mat& pixels, const cv::RotatedRect& place, Reading reading,
                             const Reader& reader) {
    const auto strip = cutStrip(pixels, place, reading);
    if (!strip) {
        return std::nullopt;
    }
    const auto seen = readStrip(*strip, reader.network, reader.alphabet);
    if (!seen) {
        throw std::runtime_error("the network that reads lines has failed");
    }
    const auto placed = placeCharacters(*seen, strip->image);
    if (placed.empty()) {
        return std::nullopt;
    }
    const double sum = std::accumulate(
        seen->begin(), seen->end(), 0.0,
        [](double total, const ReadCharacter& next) { return total + next.confidence; });
    return ReadLine{pageLine(*strip, placed), sum / static_cast<double>(seen->size())};
}

// A line that stands upright may run down or up: what reads better is right.
std::optional<PageLine> readEitherWay(const cv::Mat& pixels, const cv::RotatedRect& place,
                                      const Reader& reader) {
    try {
        auto best = read(pixels, place, Reading::along, reader);
        if (isVertical(place)) {
            auto other = read(pixels, place, Reading::against, reader);
            if (other && (!best || other->confidence > best->confidence)) {
                best = std::move(other);
            }
        }
        return best ? std::optional(std::move(best->line)) : std::nullopt;
    } catch (const cv::Exception& refused) {
        if (refused.code == cv::Error::StsNoMem) {
            throw; // not to be taken for a place without text
        }
        return std::nullopt; // sizes that OpenCV refuses
    }
}

struct ReadLines {
    std::vector<PageLine> lines;
    bool isWhole; // false when not every place could be looked at
};

ReadLines readLines(const cv::Mat& pixels, const std::vector<cv::RotatedRect>& places,
                    const Reader& reader) {
    std::vector<std::optional<PageLine>> read(places.size());
    const bool isWhole = parallelFor(
        places.size(), [&](std::size_t i) { read[i] = readEitherWay(pixels, places[i], reader); });
    ReadLines result{{}, isWhole};
    for (auto& line : read) {
        if (line) {
            result.lines.push_back(std::move(*line));
        }
    }
    return result;
}

} // namespace

TextRecognizerPpOcr::TextRecognizerPpOcr() : loaded(std::make_unique<Networks>()) {}
TextRecognizerPpOcr::~TextRecognizerPpOcr() = default;

TextRecognizerPpOcr::Networks& TextRecognizerPpOcr::networks() {
    std::call_once(loaded->once, [this] {
        // Lines are read one per processor; finding them is one run that all processors share.
        loaded->finder = loadNetwork(linesModel, static_cast<int>(availableProcessors()));
        loaded->reader = loadNetwork(readerModel, 1);
        loaded->alphabet = loadAlphabet();
    });
    return *loaded;
}

Readiness TextRecognizerPpOcr::readiness() {
    const Networks& found = networks();
    if (found.complete()) {
        return {};
    }
    if (!OnnxSession::hasLibrary()) {
        return {Outcome::failed, {OnnxSession::libraryName}};
    }
    Readiness lacking{Outcome::failed, {}};
    for (const auto& [isThere, name] : {std::pair(found.finder != nullptr, linesModel),
                                        {found.reader != nullptr, readerModel},
                                        {!found.alphabet.empty(), alphabetFile}}) {
        if (!isThere) {
            lacking.missing.emplace_back(name);
        }
    }
    return lacking;
}

RecognizedText TextRecognizerPpOcr::recognize(const Bitmap& image) {
    if (!networks().complete()) {
        return {{}, Outcome::failed};
    }
    try {
        const cv::Mat pixels = pixelsOf(image);
        auto places = findLines(pixels, *loaded->finder);
        if (!places) {
            return {{}, Outcome::failed};
        }
        // Long lines first, so that no processor is left with one at the end.
        std::ranges::sort(*places, std::ranges::greater(), [](const cv::RotatedRect& place) {
            return std::max(place.size.width, place.size.height);
        });
        auto [parts, isWhole] = readLines(pixels, *places, {*loaded->reader, loaded->alphabet});
        RecognizedText text{{}, isWhole ? Outcome::whole : Outcome::failed};
        for (PageLine& line : joinLines(std::move(parts))) {
            text.lines.push_back(recognizedLine(std::move(line), image));
        }
        return text;
    } catch (const std::exception&) {
        return {{}, Outcome::failed};
    }
}

} // namespace murkwell
