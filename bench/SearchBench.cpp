// What a search costs: reading a page against Tesseract alone, with its English data on the page at
// twice its size; how well it uses the processors, the memory it takes, and fuzzy matching of a
// long line.
//
// usage: SearchBench [PAGE.png]   without a page, a dense letter is set

#include "bench/Measure.h"
#include "detect/FuzzySearch.h"
#include "platform/image/ImageCodecVips.h"
#include "platform/ocr/TextRecognizerCombined.h"
#include "platform/pdf/PdfRendererMuPdf.h"
#include "tests/support/ModelFolder.h"
#include "tests/support/PdfBuilder.h"

#include <cstdio>
#include <fstream>
#include <iterator>
#include <limits>
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

// 1224 x 1584 pixels: letter paper at twice the points, as PDF pages are rendered; 11 points.
BitmapRef setLetter() {
    std::string text = "BT /F 11 Tf 16 TL 40 750 Td";
    for (int line = 0; line < 44; ++line) {
        text += " (Line " + std::to_string(line) + " of a letter: please call 555-010-" +
                std::to_string(1000 + 137 * line) + " or send a mail to jane.doe" +
                std::to_string(line) + "@example.com today.) '";
    }
    PdfBuilder builder;
    const int content = builder.addStream(text + " ET");
    const int page = builder.add(
        "<< /Type /Page /MediaBox [0 0 612 792] /Contents " + PdfBuilder::ref(content) +
        " /Resources << /Font << /F << /Type /Font /Subtype /Type1 /BaseFont /Times-Roman >> >> >>"
        " >>");
    const int tree =
        builder.add("<< /Type /Pages /Count 1 /Kids [" + PdfBuilder::ref(page) + "] >>");
    const auto pdf =
        builder.finish(builder.add("<< /Type /Catalog /Pages " + PdfBuilder::ref(tree) + " >>"));
    const auto result = PdfRendererMuPdf().render(pdf, std::nullopt);
    const auto* const pages = std::get_if<std::vector<RenderedPage>>(&result);
    return pages != nullptr && !pages->empty() ? pages->front().image->unpack() : nullptr;
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
    // The first readings load data and models, and the reference finds none of ours.
    Cost unused;
    {
        const ModelFolder none("nowhere");
        readOnce(alone, page, unused);
    }
    const long before = peakMegabytes();
    readOnce(both, page, unused);
    std::printf("peak memory: %ld MB with Tesseract alone, %ld MB with all readers\n", before,
                peakMegabytes());

    Cost reference;
    Cost measured;
    for (int turn = 0; turn < 3; ++turn) {
        readOnce(alone, page, reference);
        readOnce(both, page, measured);
    }
    std::printf("processor time: %.2f s Tesseract alone, %.2f s all readers\n", reference.processor,
                measured.processor);
    bench::printRatio("all readers : Tesseract alone, processor time",
                      measured.processor / reference.processor, 1.7);
    bench::printRatio("all readers, wall : processor time", measured.wall / measured.processor, .7);
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
    const BitmapRef page = argc > 1 ? loadedPage(argv[1]) : setLetter();
    if (!page) {
        std::fprintf(stderr, "SearchBench: cannot read the page\n");
        return 1;
    }
    benchReading(*page);
    benchFuzzyMatching();
}
