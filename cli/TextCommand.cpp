#include "cli/Commands.h"

#include "cli/EachSource.h"
#include "cli/Output.h"
#include "cli/PageSearch.h"

#include <nlohmann/json.hpp>

namespace murkwell::cli {
namespace {

using Json = nlohmann::ordered_json;

// Left, top, right and bottom in pixels of the page; null where there is nothing.
Json pixelBox(const RecognizerRect& box, const Bitmap& page) {
    if (!(box.width > 0 && box.height > 0)) {
        return nullptr;
    }
    const double w = page.width();
    const double h = page.height();
    return {box.minX() * w, (1 - box.maxY()) * h, box.maxX() * w, (1 - box.minY()) * h};
}

Failure printLine(const std::filesystem::path& source, std::size_t number, const Bitmap& page,
                  const RecognizedLine& line) {
    Json characters = Json::array();
    for (const RecognizerRect& box : line.characterBoxes) {
        characters.push_back(pixelBox(box, page));
    }
    return printJson({{"file", source.string()},
                      {"page", number},
                      {"line", line.text},
                      {"box", pixelBox(line.box, page)},
                      {"chars", characters}});
}

// A message when the file could not be done.
std::optional<std::string> readFile(const std::filesystem::path& source,
                                    const TextArguments& arguments, const Engines& engines) {
    HeadlessModel headless(engines);
    if (auto failure = headless.open(source)) {
        return failure;
    }
    const auto& document = headless.model.document();
    const auto pages = pagesIn(*document, arguments.page);
    if (pages.empty()) {
        return noSuchPage(source, *arguments.page, document->pages.size());
    }
    if (auto obstacle = obstacleToText(source, engines.recognition)) {
        return obstacle;
    }
    SearchReport report;
    for (const std::size_t index : pages) {
        const BitmapRef page = document->pages[index].image->unpack();
        if (!page) {
            report.addUnsearched(index);
            continue;
        }
        const auto [lines, outcome] = engines.recognition.textRecognizer.recognize(*page);
        report.add(index, {{}, outcome, std::nullopt});
        for (const RecognizedLine& line : lines) {
            if (auto failure = printLine(source, index + 1, *page, line)) {
                return failure;
            }
        }
    }
    return failureOf(report, source, engines.recognition);
}

} // namespace

bool text(const TextArguments& arguments, const Engines& engines) {
    warnOfMissingReader(engines.recognition);
    return forEachSource(arguments.sources, [&](const std::filesystem::path& source) {
        return readFile(source, arguments, engines);
    });
}

} // namespace murkwell::cli
