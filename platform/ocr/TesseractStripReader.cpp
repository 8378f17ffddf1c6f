#include "platform/ocr/TesseractStripReader.h"

#include "platform/ocr/InkProfile.h"
#include "platform/ocr/SymbolAlignment.h"

#include <algorithm>
#include <memory>
#include <opencv2/imgproc.hpp>
#include <string>
#include <tesseract/baseapi.h>
#include <tesseract/ocrclass.h>
#include <tesseract/resultiterator.h>
#include <utility>
#include <vector>

namespace murkwell {
namespace {

constexpr int patience = 10'000; // milliseconds for a line; noise is read forever

// Dark ink on light paper, so that Tesseract need not read twice to find out.
cv::Mat darkOnLight(const LineStrip& strip) {
    cv::Mat grey;
    cv::cvtColor(strip.image, grey, cv::COLOR_BGR2GRAY);
    if (hasLightInk(strip.line())) {
        cv::bitwise_not(grey, grey);
    }
    return grey;
}

struct Symbols {
    std::vector<ReadSymbol> places;
    std::vector<double> confidences;
};

Symbols symbolsOf(tesseract::ResultIterator& at) {
    Symbols symbols;
    do {
        const std::unique_ptr<char[]> text(at.GetUTF8Text(tesseract::RIL_SYMBOL));
        int left = 0;
        int top = 0;
        int right = 0;
        int bottom = 0;
        if (text && at.BoundingBox(tesseract::RIL_SYMBOL, &left, &top, &right, &bottom)) {
            symbols.places.push_back({text.get(), static_cast<double>(left),
                                      static_cast<double>(right),
                                      at.IsAtBeginningOf(tesseract::RIL_WORD)});
            symbols.confidences.push_back(at.Confidence(tesseract::RIL_SYMBOL) / 100);
        }
    } while (at.Next(tesseract::RIL_SYMBOL));
    return symbols;
}

double meanWordConfidence(tesseract::ResultIterator& at) {
    double sum = 0;
    int words = 0;
    do {
        sum += at.Confidence(tesseract::RIL_WORD) / 100;
        ++words;
    } while (at.Next(tesseract::RIL_WORD));
    return sum / words;
}

StripReading collect(tesseract::TessBaseAPI& engine, const cv::Mat& line) {
    const std::unique_ptr<tesseract::ResultIterator> at(engine.GetIterator());
    const Symbols symbols = at ? symbolsOf(*at) : Symbols{};
    if (symbols.places.empty()) {
        return {};
    }
    at->Begin();
    StripReading reading{{}, meanWordConfidence(*at)};
    constexpr double faint = .3; // closes gaps inside of characters
    const std::vector<double> centres = centresOf(symbols.places, InkProfile(line, faint));
    for (std::size_t i = 0; i < centres.size(); ++i) {
        if (i > 0 && symbols.places[i].beginsWord) {
            reading.characters.push_back({" ", (centres[i - 1] + centres[i]) / 2, 1});
        }
        reading.characters.push_back({symbols.places[i].text, centres[i], symbols.confidences[i]});
    }
    return reading;
}

} // namespace

std::optional<StripReading> readWithTesseract(const LineStrip& strip, TesseractEngines& engines) {
    constexpr int resolution = 300; // dots an inch; keeps Tesseract from guessing
    auto engine = engines.take();
    if (!engine) {
        return std::nullopt;
    }
    const cv::Mat grey = darkOnLight(strip);
    engine->SetPageSegMode(tesseract::PSM_RAW_LINE);
    engine->SetVariable("tessedit_do_invert", "0");
    engine->SetImage(grey.data, grey.cols, grey.rows, 1, static_cast<int>(grey.step));
    engine->SetSourceResolution(resolution);
    tesseract::ETEXT_DESC monitor;
    monitor.set_deadline_msecs(patience);
    std::optional<StripReading> reading;
    if (engine->Recognize(&monitor) == 0) {
        reading = collect(*engine, strip.line());
    }
    engine->Clear();
    engines.giveBack(std::move(engine));
    return reading;
}

} // namespace murkwell
