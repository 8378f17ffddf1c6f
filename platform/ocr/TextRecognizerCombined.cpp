#include "platform/ocr/TextRecognizerCombined.h"

#include "platform/ocr/LineFinder.h"
#include "platform/ocr/LineJoiner.h"
#include "platform/ocr/LineMerge.h"
#include "platform/ocr/LineReading.h"
#include "platform/ocr/PpOcrStripReader.h"
#include "platform/vision/Grain.h"
#include "platform/vision/InstalledFiles.h"
#include "platform/vision/OnnxSession.h"
#include "platform/vision/PixelMatrix.h"
#include "platform/vision/Transparency.h"

#include <algorithm>
#include <exception>
#include <iterator>
#include <mutex>
#include <utility>

namespace murkwell {

struct TextRecognizerCombined::Networks {
    std::once_flag once;
    std::unique_ptr<OnnxSession> finder;
    std::unique_ptr<PpOcrStripReader> reader;

    [[nodiscard]] bool complete() const { return finder && reader; }
};

namespace {

constexpr const char* linesModel = "text-lines.onnx";

// Above this the finder takes specks for strokes: grey levels, standard deviation.
constexpr double mostGrain = 25;

std::unique_ptr<OnnxSession> loadFinder() {
    const auto file = installedModel(linesModel);
    return file ? OnnxSession::load(*file, 1, 1) : nullptr;
}

} // namespace

TextRecognizerCombined::TextRecognizerCombined() : loaded(std::make_unique<Networks>()) {}
TextRecognizerCombined::~TextRecognizerCombined() = default;

const TextRecognizerCombined::Networks& TextRecognizerCombined::networks() {
    std::call_once(loaded->once, [this] {
        loaded->finder = loadFinder();
        loaded->reader = PpOcrStripReader::load();
    });
    return *loaded;
}

Readiness TextRecognizerCombined::readiness() {
    const Networks& found = networks();
    Readiness lacking;
    if (!OnnxSession::hasLibrary()) {
        lacking.missing.emplace_back(OnnxSession::libraryName);
    } else {
        if (!found.finder) {
            lacking.missing.emplace_back(linesModel);
        }
        if (!found.reader) { // for want of one of the two, or because they do not fit
            lacking.missing.emplace_back(PpOcrStripReader::modelFile);
            lacking.missing.emplace_back(PpOcrStripReader::alphabetFile);
        }
    }
    const Readiness tesseract = wholePages.readiness();
    if (found.complete() && tesseract.outcome == Outcome::whole) {
        return {};
    }
    lacking.outcome = found.complete() || tesseract.outcome != Outcome::failed ? Outcome::partial
                                                                               : Outcome::failed;
    lacking.missing.insert(lacking.missing.end(), tesseract.missing.begin(),
                           tesseract.missing.end());
    return lacking;
}

// Failed when not every line could be looked at.
RecognizedText TextRecognizerCombined::readByLines(const Bitmap& image) {
    try {
        const cv::Mat pixels = withoutGrain(pixelsOf(image), mostGrain);
        const auto places = findLines(pixels, *loaded->finder);
        auto parts = places ? readLines(pixels, *places, {engines, *loaded->reader}) : std::nullopt;
        if (!parts) {
            return {{}, Outcome::failed};
        }
        RecognizedText text;
        for (const PageLine& line : joinLines(std::move(*parts))) {
            std::ranges::move(recognizedLines(line, image), std::back_inserter(text.lines));
        }
        return text;
    } catch (const std::exception&) {
        return {{}, Outcome::failed};
    }
}

RecognizedText TextRecognizerCombined::look(const Bitmap& image) {
    if (networks().complete()) {
        RecognizedText text = readByLines(image);
        if (text.outcome == Outcome::whole) {
            text.outcome = wholePages.readiness().outcome == Outcome::failed ? Outcome::partial
                                                                             : Outcome::whole;
            return text;
        }
    }
    RecognizedText text = wholePages.recognize(image);
    text.outcome = std::max(text.outcome, Outcome::partial);
    return text;
}

RecognizedText TextRecognizerCombined::recognize(const Bitmap& image) {
    RecognizedText text = look(image);
    if (hasTransparency(image)) {
        const BitmapRef dark = onBlack(image);
        RecognizedText again = dark ? look(*dark) : RecognizedText{{}, Outcome::failed};
        text.lines = mergeLooks(std::move(text.lines), std::move(again.lines));
        text.outcome = std::max(text.outcome, again.outcome);
    }
    return text;
}

} // namespace murkwell
