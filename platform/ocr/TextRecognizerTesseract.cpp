#include "platform/ocr/TextRecognizerTesseract.h"

#include "platform/vision/PixelMatrix.h"

#include <algorithm>
#include <cstddef>
#include <exception>
#include <opencv2/imgproc.hpp>
#include <string>
#include <tesseract/baseapi.h>
#include <tesseract/ocrclass.h>
#include <tesseract/resultiterator.h>
#include <vector>

namespace murkwell {
namespace {

constexpr double enlargement = 2;    // Tesseract is at its best with 300 dots an inch
constexpr double longestSide = 4800; // pixels of the enlarged page
constexpr int pageResolution = 144;  // dots an inch of a page, about
constexpr double margin = 2;         // pixels of the page around a character
constexpr int patience = 60'000;     // milliseconds; noise is read forever

using Api = tesseract::TessBaseAPI;

double scaleFor(const cv::Mat& pixels) {
    return std::min(enlargement, longestSide / std::max(pixels.cols, pixels.rows));
}

cv::Mat enlargedGrey(const cv::Mat& pixels, double scale) {
    const cv::Size size(std::max(1, cvRound(pixels.cols * scale)),
                        std::max(1, cvRound(pixels.rows * scale)));
    cv::Mat grey;
    if (scale < 1) {
        cv::Mat smaller;
        cv::resize(pixels, smaller, size, 0, 0, cv::INTER_AREA);
        cv::cvtColor(onWhite(smaller), grey, cv::COLOR_BGR2GRAY);
        return grey;
    }
    cv::cvtColor(onWhite(pixels), grey, cv::COLOR_BGR2GRAY);
    cv::Mat larger;
    cv::resize(grey, larger, size, 0, 0, cv::INTER_LINEAR);
    return larger;
}

std::size_t codePoints(const std::string& utf8) {
    return static_cast<std::size_t>(std::ranges::count_if(
        utf8, [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0) != 0x80; }));
}

// Collects the symbols of a page into lines.
class Collector {
public:
    Collector(double pageScale, const Bitmap& of) : scale(pageScale), page(of) {}

    std::vector<RecognizedLine> collect(const tesseract::ResultIterator& first) {
        tesseract::ResultIterator& at = const_cast<tesseract::ResultIterator&>(first);
        do {
            if (!at.Empty(tesseract::RIL_SYMBOL)) {
                add(at);
            }
        } while (at.Next(tesseract::RIL_SYMBOL));
        return std::move(lines);
    }

private:
    cv::Rect2d boxOf(const tesseract::ResultIterator& at, tesseract::PageIteratorLevel level) {
        int left = 0;
        int top = 0;
        int right = 0;
        int bottom = 0;
        at.BoundingBox(level, &left, &top, &right, &bottom);
        return {cv::Point2d(left, top) / scale, cv::Point2d(right, bottom) / scale};
    }

    void add(const tesseract::ResultIterator& at) {
        if (at.IsAtBeginningOf(tesseract::RIL_TEXTLINE) || lines.empty()) {
            const cv::Rect2d box = boxOf(at, tesseract::RIL_TEXTLINE);
            lines.push_back({{}, recognizerRect(box, page), {}});
        }
        RecognizedLine& line = lines.back();
        if (at.IsAtBeginningOf(tesseract::RIL_WORD)) {
            if (!line.text.empty()) {
                line.text += ' ';
                line.characterBoxes.emplace_back();
            }
            word = boxOf(at, tesseract::RIL_WORD);
        }
        const std::unique_ptr<char[]> symbol(at.GetUTF8Text(tesseract::RIL_SYMBOL));
        if (symbol) {
            const std::string text = symbol.get();
            line.text += text;
            line.characterBoxes.insert(line.characterBoxes.end(), codePoints(text),
                                       recognizerRect(symbolBox(at), page));
        }
    }

    // As high as its word, and out to the word's ends for the first and last.
    cv::Rect2d symbolBox(const tesseract::ResultIterator& at) {
        const cv::Rect2d symbol = boxOf(at, tesseract::RIL_SYMBOL);
        const cv::Point2d reach(margin, margin);
        cv::Point2d from(symbol.x, std::min(symbol.y, word.y));
        cv::Point2d to(symbol.br().x, std::max(symbol.br().y, word.br().y));
        if (at.IsAtBeginningOf(tesseract::RIL_WORD)) {
            from.x = std::min(from.x, word.x);
        }
        if (at.IsAtFinalElement(tesseract::RIL_WORD, tesseract::RIL_SYMBOL)) {
            to.x = std::max(to.x, word.br().x);
        }
        return {from - reach, to + reach};
    }

    double scale;
    const Bitmap& page;
    cv::Rect2d word;
    std::vector<RecognizedLine> lines;
};

RecognizedText readPage(Api& api, const Bitmap& image) {
    const cv::Mat pixels = pixelsOf(image);
    const double scale = scaleFor(pixels);
    const cv::Mat grey = enlargedGrey(pixels, scale);
    api.SetPageSegMode(tesseract::PSM_AUTO);
    api.SetImage(grey.data, grey.cols, grey.rows, 1, static_cast<int>(grey.step));
    api.SetSourceResolution(cvRound(pageResolution * scale));
    tesseract::ETEXT_DESC monitor;
    monitor.set_deadline_msecs(patience);
    // Failed when time or memory ran out before the end.
    RecognizedText read{{}, api.Recognize(&monitor) == 0 ? Outcome::whole : Outcome::failed};
    if (const std::unique_ptr<tesseract::ResultIterator> first(api.GetIterator()); first) {
        read.lines = Collector(scale, image).collect(*first);
    }
    api.Clear();
    return read;
}

} // namespace

Readiness TextRecognizerTesseract::readiness() {
    try {
        return engines.readiness();
    } catch (const std::exception&) {
        return {Outcome::failed, {TesseractEngines::systemData}};
    }
}

RecognizedText TextRecognizerTesseract::recognize(const Bitmap& image) {
    try {
        auto api = engines.take();
        if (!api) {
            return {{}, Outcome::failed};
        }
        RecognizedText read = readPage(*api, image);
        engines.giveBack(std::move(api));
        return read;
    } catch (const std::exception&) {
        return {{}, Outcome::failed};
    }
}

} // namespace murkwell
