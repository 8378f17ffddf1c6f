#include "cli/Commands.h"

#include "cli/Output.h"

#include <nlohmann/json.hpp>

namespace murkwell::cli {

bool info(const InfoArguments& arguments, const Engines& engines) {
    Progress progress(arguments.sources.size());
    bool allDone = true;
    for (const auto& source : arguments.sources) {
        progress.begin(source);
        HeadlessModel headless(engines);
        if (const auto failure = headless.open(source)) {
            printFailure(*failure);
            allDone = false;
            continue;
        }
        const auto& document = headless.model.document();
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
