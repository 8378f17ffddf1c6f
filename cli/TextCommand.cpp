#include "cli/Commands.h"

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

void printLine(const std::filesystem::path& source, std::size_t number, const Bitmap& page,
               const RecognizedLine& line) {
    Json characters = Json::array();
    for (const RecognizerRect& box : line.characterBoxes) {
        characters.push_back(pixelBox(box, page));
    }
    printJson({{"file", source.string()},
               {"page", number},
               {"line", line.text},
               {"box", pixelBox(line.box, page)},
               {"chars", characters}});
}

} // namespace

bool text(const TextArguments& arguments, const DocumentIO::Engines& engines,
          TextRecognizer& recognizer) {
    Progress progress(arguments.sources.size());
    bool allDone = true;
    for (const auto& source : arguments.sources) {
        progress.begin(source);
        const auto document = DocumentIO::load(source, engines);
        const auto pages =
            document ? pagesIn(*document, arguments.page) : std::vector<std::size_t>();
        if (pages.empty()) {
            printFailure(document ? noSuchPage(source, *arguments.page, document->pages.size())
                                  : couldNotOpen(source));
            allDone = false;
        }
        for (const std::size_t index : pages) {
            const Bitmap& page = *document->pages[index].image;
            const auto lines = recognizer.recognize(page);
            for (const RecognizedLine& line : lines.value_or(std::vector<RecognizedLine>())) {
                printLine(source, index + 1, page, line);
            }
        }
    }
    return allDone;
}

} // namespace murkwell::cli
