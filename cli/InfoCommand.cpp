#include "cli/Commands.h"

#include "cli/Output.h"

#include <nlohmann/json.hpp>

namespace murkwell::cli {

bool info(const InfoArguments& arguments, const DocumentIO::Engines& engines) {
    Progress progress(arguments.sources.size());
    bool allDone = true;
    for (const auto& source : arguments.sources) {
        progress.begin(source);
        const auto document = DocumentIO::load(source, engines);
        if (!document) {
            printFailure(couldNotOpen(source));
            allDone = false;
            continue;
        }
        auto pages = nlohmann::ordered_json::array();
        for (const auto& page : document->pages) {
            pages.push_back({page.image->width(), page.image->height()});
        }
        printJson({{"file", source.string()},
                   {"isPDF", document->isPDF},
                   {"imageType", document->imageType.identifier()},
                   {"pages", pages}});
    }
    return allDone;
}

} // namespace murkwell::cli
