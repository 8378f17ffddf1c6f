#include "cli/Commands.h"

#include "cli/EachSource.h"
#include "cli/Output.h"
#include "cli/PageSearch.h"

#include <nlohmann/json.hpp>

namespace murkwell::cli {
namespace {

Failure printBox(const std::filesystem::path& source, std::size_t page,
                 const Redaction& redaction) {
    const PageRect& rect = redaction.rect;
    return printJson({{"file", source.string()},
                      {"page", page},
                      {"rect", {rect.x, rect.y, rect.width, rect.height}},
                      {"style", rawValue(redaction.style)},
                      {"detected", redaction.detected}});
}

// A message when the file could not be done. A saved document's own boxes are printed as well, and
// what was found where something else could not be searched.
std::optional<std::string> scanFile(const std::filesystem::path& source,
                                    const ScanArguments& arguments, const Engines& engines) {
    HeadlessModel headless(engines);
    RedactModel& model = headless.model;
    if (auto failure = headless.open(source)) {
        return failure;
    }
    const auto pages = pagesIn(*model.document(), arguments.search.page);
    if (pages.empty()) {
        return noSuchPage(source, *arguments.search.page, model.document()->pages.size());
    }
    const Failure unsearched =
        search(model, arguments.search, RedactionStyle::solidBlack, source, engines.recognition);
    for (const std::size_t index : pages) {
        for (const Redaction& redaction : model.redactionsByPage()[index]) {
            if (auto failure = printBox(source, index + 1, redaction)) {
                return failure;
            }
        }
    }
    // What is missing says more than which pages lack it.
    const Failure obstacle =
        unsearched ? obstacleTo(arguments.search, source, engines.recognition) : std::nullopt;
    return obstacle ? obstacle : unsearched;
}

} // namespace

bool scan(const ScanArguments& arguments, const Engines& engines) {
    if (readsText(arguments.search)) {
        warnOfMissingReader(engines.recognition);
    }
    return forEachSource(arguments.sources, [&](const std::filesystem::path& source) {
        return scanFile(source, arguments, engines);
    });
}

} // namespace murkwell::cli
