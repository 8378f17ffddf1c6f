// What a search costs: reading a page with both readers against Tesseract alone, how well the two
// use the processors, the memory it takes, and fuzzy matching of a long line.
//
// usage: SearchBench [PAGE.png]   without a page, a dense letter is drawn

#include "bench/Measure.h"
#include "detect/FuzzySearch.h"
#include "platform/image/ImageCodecVips.h"
#include "platform/ocr/TextRecognizerCombined.h"
#include "platform/vision/PixelMatrix.h"

#include <cstdio>
#include <fstream>
#include <iterator>
#include <limits>
#include <opencv2/imgproc.hpp>
#include <span>
#include <string>
#include <sys/resource.h>
#include <vector>

namespace {

using namespace murkwell;

double processorSeconds() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

long peakMegabytes() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss / 1024;
}

// 1224 x 1584 pixels: letter paper at twice the points, as PDF pages are rendered.
BitmapRef drawnLetter() {
    auto page = Bitmap::create(1224, 1584);
    cv::Mat pixels = pixelsOf(*page);
    pixels.setTo(cv::Scalar::all(255));
    for (int line = 0; line < 44; ++line) {
        cv::putText(pixels,
                    "Line " + std::to_string(line) + " of a letter: call 555-010-" +
                        std::to_string(1000 + 137 * line) + " or mail jane@example.com",
                    {80, 100 + 32 * line}, cv::FONT_HERSHEY_SIMPLEX, .75, {0, 0, 0, 255}, 2,
                    cv::LINE_AA);
    }
    return page;
}

BitmapRef loadedPage(const char* file) {
    std::ifstream in(file, std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(in), {}};
    ImageCodecVips codec;
    const auto decoded = codec.decode(std::as_bytes(std::span(bytes)));
    return decoded ? decoded->bitmap : nullptr;
}

struct Cost {
    double processor = std::numeric_limits<double>::infinity();
    double wall = std::numeric_limits<double>::infinity();
};

void readOnce(TextRecognizer& recognizer, const Bitmap& page, Cost& best) {
    const double before = processorSeconds();
    const double wall = bench::seconds([&] { (void)recognizer.recognize(page); });
    const double processor = processorSeconds() - before;
    if (processor < best.processor) {
        best = {processor, wall};
    }
}

void benchReading(const Bitmap& page) {
    TesseractEngines engines;
    TextRecognizerTesseract alone(engines);
    TextRecognizerCombined both;
    // The first readings load data and models.
    Cost unused;
    readOnce(alone, page, unused);
    const long before = peakMegabytes();
    readOnce(both, page, unused);
    std::printf("peak memory: %ld MB with Tesseract alone, %ld MB with both readers\n", before,
                peakMegabytes());

    Cost reference;
    Cost measured;
    for (int turn = 0; turn < 3; ++turn) {
        readOnce(alone, page, reference);
        readOnce(both, page, measured);
    }
    std::printf("processor time: %.2f s Tesseract alone, %.2f s both readers\n",
                reference.processor, measured.processor);
    bench::printRatio("both readers : Tesseract alone, processor time",
                      measured.processor / reference.processor, 4.5);
    bench::printRatio("both readers, wall : processor time", measured.wall / measured.processor,
                      .6);
}

void benchFuzzyMatching() {
    const auto words = [](int count, int step) {
        std::u16string text;
        for (int i = 0; i < count; ++i) {
            for (int j = 0; j < 3 + i % 8; ++j) {
                text += static_cast<char16_t>(u'a' + (i * step + j * 11) % 26);
            }
            text += u' ';
        }
        return text;
    };
    const std::u16string line = words(5000, 7);
    const std::u16string query = words(20, 5);
    double best = std::numeric_limits<double>::infinity();
    for (int turn = 0; turn < 5; ++turn) {
        best = std::min(best, bench::seconds([&] { (void)fuzzyRanges(query, line); }));
    }
    bench::printRatio("fuzzy matching, 20 words in 5,000: ms", best * 1000, 50);
}

} // namespace

int main(int argc, char** argv) {
    const BitmapRef page = argc > 1 ? loadedPage(argv[1]) : drawnLetter();
    if (!page) {
        std::fprintf(stderr, "SearchBench: cannot read the page\n");
        return 1;
    }
    benchReading(*page);
    benchFuzzyMatching();
}
