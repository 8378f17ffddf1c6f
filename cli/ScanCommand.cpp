#include "cli/Commands.h"

#include "cli/Output.h"
#include "cli/PageSearch.h"

#include <nlohmann/json.hpp>

namespace murkwell::cli {
namespace {

void printBox(const std::filesystem::path& source, std::size_t page, const Redaction& redaction) {
    const PageRect& rect = redaction.rect;
    printJson({{"file", source.string()},
               {"page", page},
               {"rect", {rect.x, rect.y, rect.width, rect.height}},
               {"style", rawValue(redaction.style)},
               {"detected", redaction.detected}});
}

} // namespace

bool scan(const ScanArguments& arguments, const DocumentIO::Engines& engines,
          const Detector::Engines& recognition) {
    Progress progress(arguments.sources.size());
    bool allDone = true;
    for (const auto& source : arguments.sources) {
        progress.begin(source);
        const auto document = DocumentIO::load(source, engines);
        const auto pages =
            document ? pagesIn(*document, arguments.search.page) : std::vector<std::size_t>();
        if (pages.empty()) {
            printFailure(document
                             ? noSuchPage(source, *arguments.search.page, document->pages.size())
                             : couldNotOpen(source));
            allDone = false;
        }
        for (const std::size_t index : pages) {
            for (const Redaction& redaction :
                 searchPage(*document->pages[index].image, arguments.search, arguments.style,
                            recognition)) {
                printBox(source, index + 1, redaction);
            }
        }
    }
    return allDone;
}

} // namespace murkwell::cli
